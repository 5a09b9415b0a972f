// Background code books of a scene that has been learnt, a codeword a pixel and for some of them more. OpenCV has none.
#include "bench.h"

#include <ravik/codebook.h>

namespace {

using namespace bench;

// A model of a size, and the scene that it has learnt.
class Learnt
{
public:
    static const Learnt& of(const Picture& p)
    {
        static Learnt learnt;
        if (learnt.m_width != p.width)
            learnt.learn(p);
        return learnt;
    }
    rvkBGCodeBookModel* model() const { return m_model; }
    const u8* scene() const { return m_scene; }

private:
    u32 m_width = 0;
    rvkBGCodeBookModel* m_model = nullptr;
    u8* m_scene = output<u8>(1);

    void learn(const Picture& p)
    {
        m_width = p.width;
        rvkReleaseBGCodeBookModel(&m_model);
        rvkCreateBGCodeBookModel(p.width, p.height, &m_model);
        const size_t size = size_t{3} * p.width * p.height;
        for (u32 frame = 0; frame < 6; ++frame) {
            for (size_t i = 0; i < size; ++i) {
                const u32 noise = static_cast<u32>(i * 2654435761u + frame * 40503u) >> 28;
                m_scene[i] = static_cast<u8>(p.in<u8>()[i / 3] / 2 + noise / 2 + (noise == 15 ? 40 : 0));
            }
            rvkBGCodeBookUpdateu8(m_model, m_scene, p.width, p.height, 0, nullptr, 0);
        }
    }
};

constexpr Row kRows[] = {
    {"rvkBGCodeBookUpdateu8", nullptr, trafficOnNatural(3, 20),
     RAVIK(const Learnt& learnt = Learnt::of(p);
           rvkBGCodeBookUpdateu8(learnt.model(), learnt.scene(), p.width, p.height, 0, nullptr, 0))},
    {"rvkBGCodeBookDiffu8", nullptr, trafficOnNatural(3, 1),
     RAVIK(const Learnt& learnt = Learnt::of(p); u32 count;
           rvkBGCodeBookDiffu8(learnt.model(), learnt.scene(), p.width, p.height, 0, p.out<u8>(), 0, &count))},
    {"rvkBGCodeBookClearStaleu8", nullptr, trafficOnNatural(8, 8),
     RAVIK(rvkBGCodeBookClearStaleu8(Learnt::of(p).model(), UINT32_MAX, nullptr, p.width, p.height, 0))},
};
const Rows registered(kRows);

} // namespace
