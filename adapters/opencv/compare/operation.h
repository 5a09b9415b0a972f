// Calls of OpenCV that reach hooks of the adapter, with random arguments: the same program runs on OpenCV as it is and
// on OpenCV with the adapter, and compare.py holds the results and the times of both against each other.
#pragma once

#include <opencv2/core.hpp>

#include <functional>
#include <string>
#include <vector>

// One call with its arguments, which can be repeated, and what it has written afterwards.
struct Call
{
    std::function<void()> run;
    std::vector<cv::Mat> results; // whole matrices where a region of them is the destination
    size_t sourceBytes;           // what a memcpy beside it copies
};

// Draws arguments. When times are measured they are plain: whole pictures of the size asked for, and of several choices
// the first.
class Draw
{
public:
    explicit Draw(uint64_t seed);   // random arguments
    explicit Draw(cv::Size toTime); // plain ones

    int between(int low, int high, int toTime); // both ends included
    double between(double low, double high, double toTime);
    template <typename T>
    T among(std::initializer_list<T> choices)
    {
        return choices.begin()[between(0, int(choices.size()) - 1, 0)];
    }

    // The size that the pictures of this call have.
    cv::Size size() const { return pictureSize; }

    // A picture with natural statistics, noise, extreme values or few of them; often a region of a larger one.
    cv::Mat source(int type) { return source(type, pictureSize); }
    cv::Mat source(int type, cv::Size size);
    // Values without structure, in the range that is given.
    cv::Mat noise(int type, cv::Size size, double low, double high);

    // A destination: `whole` is what the call's results hold, `region` what the call is given.
    struct Destination
    {
        cv::Mat whole, region;
    };
    Destination destination(int type) { return destination(type, pictureSize); }
    Destination destination(int type, cv::Size size);

private:
    cv::Mat regionOf(int type, cv::Size size, cv::Mat& whole);

    bool timed;
    cv::RNG random;
    cv::Size pictureSize;
};

// A call of OpenCV by name. Results are equal, unless it says how far apart they may be: the largest difference of an
// element, and the share of elements that may differ by more than that.
struct Operation
{
    std::string name;
    std::function<Call(Draw&)> prepare;
    double within = 0, exceptions = 0;
};

// The operations of a module's hooks.
std::vector<Operation> coreOperations();
std::vector<Operation> filterOperations();
std::vector<Operation> colorOperations();
std::vector<Operation> geometryOperations();
std::vector<Operation> features2dOperations();
