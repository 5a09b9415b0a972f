// A function called as its test describes it, but on the scene and with numbers that show what it does.
#pragma once

#include "picture.h"

#include "functionTest.h"

#include <string_view>
#include <vector>

class Example
{
public:
    static constexpr CaseSize kSize{160, 120};

    // Calls the function.
    explicit Example(const FunctionTest& function, CaseSize size = kSize);

    // Whether the function makes pictures from pictures.
    static bool isPossible(const FunctionTest& function);

    bool succeeded() const { return m_succeeded; }
    Picture picture() const;
    // The numbers that are neither sizes nor strides, by argument.
    std::vector<std::pair<size_t, double>> numbers() const;

private:
    struct Image
    {
        size_t argument;
        uint32_t width, height;
        size_t stride;
        std::vector<uint8_t> data{}, before{}; // the call
    };

    void takeNumbers();
    void layOut();
    void fill();
    void fillNumbers(Image& image) const;
    void fillPicture(Image& image, size_t ordinal) const;
    void fillMap(Image& image) const;
    template <class T>
    void fillPixels(Image& image, const Picture& scene, size_t ordinal) const;

    std::vector<Picture> shown(const Image& image, const std::vector<uint8_t>& bytes) const;
    std::vector<uint8_t> transformOfScene(std::string_view name) const;

    const FunctionTest& m_function;
    const CaseSize m_size;
    std::vector<double> m_numbers;
    std::vector<Image> m_images;
    int m_shift = 8; // of weights
    bool m_succeeded = false;
};
