// A companion library whose functions a test chooses: words that hold addresses, exported as 0.
using Word = void (*)();

extern "C" {

Word rvkAddu8R_;
Word rvkAbsDiffu8R_;
Word rvkAbsDiffs32R_;
Word probeX6TimeR_;
}
