// Maximally stable extremal regions. A pass finds the regions that are kept and lists them. Most of it follows pointers
// and branches on what it finds, so the vector implementations are of the kernels that prepare and measure.
#include "cpu/image.h"
#include "cpu/mserTree.h"
#include "functions.h"
#include "kernels.h"
#include "scratch.h"

#include <pthread.h>

namespace rvk {

// ---- kernels -------------------------------------------------------------------------------------------------------

namespace {

template <class GreyOf>
void prepareCells(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                  uint32_t* histogram, GreyOf greyOf)
{
    const Plane<const uint8_t> image = {src, stride};
    std::fill_n(cells, static_cast<size_t>(mserCells(width, height)), kMserSeen);
    std::fill_n(histogram, 256, 0u);
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x) {
            const uint8_t grey = greyOf(image.row(y)[x]);
            cells[(y + 1) * mserPitch(width) + x + 1] = grey;
            ++histogram[grey];
        }
}

uint8_t inverted(uint8_t value)
{
    return static_cast<uint8_t>(255 - value);
}

uint8_t unchanged(uint8_t value)
{
    return value;
}

} // namespace

void irvkMserPreprocessPlusNN4C(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                                uint32_t* histogram)
{
    prepareCells(src, width, height, stride, cells, histogram, inverted);
}

void irvkMserPreprocessMinusNN4C(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                                 uint32_t* histogram)
{
    prepareCells(src, width, height, stride, cells, histogram, unchanged);
}

void irvkMserPreprocessPlusNN8C(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                                uint32_t* histogram)
{
    prepareCells(src, width, height, stride, cells, histogram, inverted);
}

void irvkMserPreprocessMinusNN8C(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                                 uint32_t* histogram)
{
    prepareCells(src, width, height, stride, cells, histogram, unchanged);
}

void irvkMserFillPitsNN4C(uint16_t*, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t*, uint32_t*) {}

void irvkMserFillPitsNN8C(uint16_t*, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t*, uint32_t*) {}

void irvkMserBoundingBoxesC(const uint32_t* places, const uint32_t* counts, uint32_t nLists, uint32_t pitch,
                            rvkRectangle* boxes, uint32_t* firsts)
{
    for (size_t i = 0; i < nLists; ++i) {
        uint32_t first = UINT32_MAX, last = 0, left = UINT32_MAX, right = 0;
        for (const uint32_t* const end = places + counts[i]; places < end; ++places) {
            const uint32_t column = *places % pitch;
            first = std::min(first, *places);
            last = std::max(last, *places);
            left = std::min(left, column);
            right = std::max(right, column);
        }
        const uint32_t top = first / pitch, bottom = last / pitch;
        boxes[i] = {static_cast<int32_t>(left - 1), static_cast<int32_t>(top - 1),
                    static_cast<int32_t>(right - left + 1), static_cast<int32_t>(bottom - top + 1)};
        firsts[i] = first;
    }
}

namespace {

// ---- pieces --------------------------------------------------------------------------------------------------------

// The pixels in their order, cut where kept regions begin and end. Each piece belongs to the innermost one around it.
struct Pieces
{
    uint32_t *counts, *owners; // from the last piece to the first
    uint32_t count = 0;

    static uint64_t most(uint32_t kept) { return uint64_t{kept} * 2 + 1; }

    void cut(const MserKept* list, uint32_t kept, uint32_t pixels)
    {
        uint32_t end = pixels, owner = MserKept::kNone;
        const auto cutAt = [&](uint32_t begin) {
            if (begin == end)
                return;
            counts[count] = end - begin;
            owners[count] = owner;
            ++count;
            end = begin;
        };
        const auto leave = [&] {
            cutAt(list[owner].node.begin);
            owner = list[owner].parent;
        };
        for (uint32_t i = 0; i < kept; ++i) {
            while (owner != list[i].parent)
                leave();
            cutAt(list[i].node.end);
            owner = i;
        }
        while (owner != MserKept::kNone)
            leave();
        cutAt(0);
        std::reverse(counts, counts + count);
        std::reverse(owners, owners + count);
    }
};

void unite(rvkRectangle& box, const rvkRectangle& other)
{
    if (box.width == 0) {
        box = other;
        return;
    }
    const int32_t right = std::max(box.x + box.width, other.x + other.width);
    const int32_t bottom = std::max(box.y + box.height, other.y + other.height);
    box.x = std::min(box.x, other.x);
    box.y = std::min(box.y, other.y);
    box.width = right - box.x;
    box.height = bottom - box.y;
}

void measure(MserKept* list, uint32_t kept, const Pieces& pieces, const uint32_t* order, uint32_t pitch)
{
    const auto measurePieces = kernel<Kernel::irvkMserBoundingBoxes>();
    const auto add = [&](uint32_t owner, uint32_t first, const rvkRectangle& box) {
        list[owner].first = std::min(list[owner].first, first);
        unite(list[owner].bounds, box);
    };
    for (uint32_t i = 0; i < pieces.count; order += pieces.counts[i++])
        if (pieces.owners[i] != MserKept::kNone) {
            uint32_t first;
            rvkRectangle box;
            measurePieces(order, &pieces.counts[i], 1, pitch, &box, &first);
            add(pieces.owners[i], first, box);
        }
    for (uint32_t i = kept; i-- > 0;)
        if (list[i].parent != MserKept::kNone)
            add(list[i].parent, list[i].first, list[i].bounds);
}

// By place: the number of the innermost region.
struct Marks
{
    uint32_t* marks;
    uint32_t pitch;

    uint32_t* row(const rvkRectangle& box, int32_t y) const
    {
        return marks + (static_cast<size_t>(box.y + y) + 1) * pitch + static_cast<size_t>(box.x) + 1;
    }
    void clear(const rvkRectangle& box) const
    {
        for (int32_t y = 0; y < box.height; ++y)
            std::fill_n(row(box, y), box.width, MserKept::kNone);
    }
    void put(const uint32_t* places, uint32_t count, uint32_t region) const
    {
        for (uint32_t i = 0; i < count; ++i)
            marks[places[i]] = region;
    }
    // Adds each pixel of the box to the lists of all regions around it.
    void list(const rvkRectangle& box, MserKept* regions, uint32_t* pixels) const
    {
        for (int32_t y = 0; y < box.height; ++y) {
            const uint32_t* const innermost = row(box, y);
            for (int32_t x = 0; x < box.width; ++x)
                for (uint32_t i = innermost[x]; i != MserKept::kNone; i = regions[i].parent) {
                    uint32_t* const pixel = pixels + size_t{2} * regions[i].put++;
                    pixel[0] = static_cast<uint32_t>(box.x + x);
                    pixel[1] = static_cast<uint32_t>(box.y + y);
                }
        }
    }
};

// ---- a pass --------------------------------------------------------------------------------------------------------

struct Picture
{
    const uint8_t* src;
    uint32_t width, height, stride;
};

// Where regions go: either bounds and areas or all of it; pixels may be null.
struct Output
{
    rvkRectangle* bounds;
    uint32_t* areas;
    rvkMserRegion* regions;
    uint32_t capacity;
    uint32_t* count;
    uint32_t* pixels;
    uint32_t pixelCapacity;
};

// What is in an output.
struct Filled
{
    uint32_t regions = 0, pixels = 0;
    bool isFull = false; // there was one that did not fit
};

// Scratch memory that is taken later than its owner is made.
template <class T>
class LateScratch
{
public:
    LateScratch() = default;
    ~LateScratch() { releaseScratch(m_data); }
    LateScratch(const LateScratch&) = delete;
    LateScratch& operator=(const LateScratch&) = delete;

    bool take(uint64_t count)
    {
        m_data = static_cast<T*>(getScratchRows(count, 1, sizeof(T)));
        return m_data != nullptr;
    }
    T* get() const { return m_data; }
    T& operator[](size_t i) const { return m_data[i]; }

private:
    T* m_data = nullptr;
};

enum class Polarity { dark, bright };

// One pass. Its memory is taken and released by the thread that makes and destroys it.
class Pass
{
public:
    // `memory` is its workspace; null takes scratch memory.
    Pass(Polarity polarity, const Picture& picture, const MserParameters& parameters, uint32_t connectivity,
         uint8_t* memory)
        : m_polarity(polarity), m_picture(picture), m_parameters(parameters), m_connectivity(connectivity),
          m_memory(memory)
    {
    }

    // False when there is no memory.
    bool run()
    {
        if (!m_memory) {
            if (!m_ownMemory.take(mserWorkspaceSize(m_picture.width, m_picture.height)))
                return false;
            m_memory = m_ownMemory.get();
        }
        const MserWorkspace work(m_memory, m_picture.width, m_picture.height);
        const uint32_t pitch = mserPitch(m_picture.width);
        uint32_t histogram[256];
        prepare(work.cells, histogram);
        fillPits(work, histogram);
        const uint32_t nodes = floodMserTree(work, pitch, histogram, m_parameters.minArea, m_connectivity);
        m_kept = selectMserRegions(work, nodes, m_parameters);
        if (!m_list.take(uint64_t{m_kept} + 1) || !m_ranked.take(uint64_t{m_kept} + 1) || !takePieces()) {
            m_kept = 0;
            return false;
        }
        listMserRegions(work, nodes, m_list.get());
        m_pieces.cut(m_list.get(), m_kept, m_picture.width * m_picture.height);
        measure(m_list.get(), m_kept, m_pieces, work.order, pitch);
        rank();
        return true;
    }

    // What will be in the output, of which so much is taken.
    Filled fit(const Output& output, Filled filled) const
    {
        for (uint32_t i = 0; i < m_kept && !filled.isFull; ++i) {
            const uint32_t area = m_list[m_ranked[i]].node.area();
            filled.isFull =
                filled.regions == output.capacity || (output.pixels && area > output.pixelCapacity - filled.pixels);
            if (filled.isFull)
                break;
            filled.regions++;
            filled.pixels += output.pixels ? area : 0;
        }
        return filled;
    }

    // Fills the output behind what is there.
    void put(const Output& output, Filled before) const
    {
        const uint32_t count = fit(output, before).regions - before.regions;
        for (uint32_t i = 0; i < count; ++i) {
            const MserKept& kept = m_list[m_ranked[i]];
            const size_t index = size_t{before.regions} + i;
            if (output.regions)
                output.regions[index] = record(kept, before.regions);
            else {
                output.bounds[index] = kept.bounds;
                output.areas[index] = kept.node.area();
            }
        }
        if (output.pixels)
            putPixels(output.pixels + size_t{2} * before.pixels, count);
    }

private:
    Polarity m_polarity;
    Picture m_picture;
    MserParameters m_parameters;
    uint32_t m_connectivity;
    uint8_t* m_memory;
    LateScratch<uint8_t> m_ownMemory;
    uint32_t m_kept = 0;
    LateScratch<MserKept> m_list;
    LateScratch<uint32_t> m_ranked; // their numbers, in the order of the output
    LateScratch<uint32_t> m_pieceWords;
    Pieces m_pieces = {};

    void prepare(uint16_t* cells, uint32_t (&histogram)[256]) const
    {
        const bool isBright = m_polarity == Polarity::bright;
        const auto prepareNN4 =
            isBright ? kernel<Kernel::irvkMserPreprocessPlusNN4>() : kernel<Kernel::irvkMserPreprocessMinusNN4>();
        const auto prepareNN8 =
            isBright ? kernel<Kernel::irvkMserPreprocessPlusNN8>() : kernel<Kernel::irvkMserPreprocessMinusNN8>();
        (m_connectivity == 8 ? prepareNN8 : prepareNN4)(m_picture.src, m_picture.width, m_picture.height,
                                                        m_picture.stride, cells, histogram);
    }

    // A small region matters to the one around it alone, which is stable if it varies less. It does whenever it is
    // kept, if the small one would not be for its variation: that is more than maxVariation where, delta levels higher,
    // it is part of a region of minArea pixels.
    void fillPits(const MserWorkspace& work, uint32_t (&histogram)[256]) const
    {
        const double most = (m_parameters.minArea - 1.0) / (m_parameters.maxVariation + 1.0);
        const auto fill =
            m_connectivity == 8 ? kernel<Kernel::irvkMserFillPitsNN8>() : kernel<Kernel::irvkMserFillPitsNN4>();
        fill(work.cells, m_picture.width, m_picture.height, static_cast<uint32_t>(most), m_parameters.delta, histogram,
             work.words);
    }

    bool takePieces()
    {
        const uint64_t most = Pieces::most(m_kept);
        if (!m_pieceWords.take(2 * most))
            return false;
        m_pieces = {m_pieceWords.get(), m_pieceWords.get() + most};
        return true;
    }

    void rank() const
    {
        for (uint32_t i = 0; i < m_kept; ++i)
            m_ranked[i] = i;
        std::sort(m_ranked.get(), m_ranked.get() + m_kept, [this](uint32_t a, uint32_t b) {
            const MserKept &first = m_list[a], &second = m_list[b];
            return first.node.level != second.node.level ? first.node.level > second.node.level
                                                         : first.first < second.first;
        });
        for (uint32_t i = 0; i < m_kept; ++i)
            m_list[m_ranked[i]].rank = i;
    }

    rvkMserRegion record(const MserKept& kept, uint32_t before) const
    {
        const uint32_t area = kept.node.area();
        const bool isBright = m_polarity == Polarity::bright;
        return {kept.bounds,
                area,
                isBright ? 1 : -1,
                isBright ? 255 - kept.node.level : kept.node.level,
                static_cast<float>(double{1} * (kept.grown - area) / area),
                kept.parent == MserKept::kNone ? -1 : static_cast<int32_t>(before + m_list[kept.parent].rank)};
    }

    // The pixels of the first `count` regions. Those of a region that lies in no other, and of all in it, are marked in
    // its box with the innermost region, and listed row by row; or of all regions at once, if there is less in the
    // picture than in their boxes.
    void putPixels(uint32_t* pixels, uint32_t count) const
    {
        uint32_t used = 0;
        for (uint32_t i = 0; i < count; ++i) {
            m_list[m_ranked[i]].put = used;
            used += m_list[m_ranked[i]].node.area();
        }
        double boxes = 0;
        for (uint32_t i = 0; i < m_kept; ++i)
            if (m_list[i].parent == MserKept::kNone)
                boxes += double{1} * m_list[i].bounds.width * m_list[i].bounds.height;
        const bool atOnce = boxes > double{1} * m_picture.width * m_picture.height;
        const rvkRectangle whole = {0, 0, static_cast<int32_t>(m_picture.width),
                                    static_cast<int32_t>(m_picture.height)};

        const Marks marks = {MserWorkspace(m_memory, m_picture.width, m_picture.height).words,
                             mserPitch(m_picture.width)};
        if (atOnce)
            marks.clear(whole);
        const uint32_t* places = MserWorkspace(m_memory, m_picture.width, m_picture.height).order;
        for (uint32_t i = 0, place = 0; i < m_pieces.count;) {
            const uint32_t outermost = outermostAround(m_pieces.owners[i]);
            const bool isOutside = outermost == MserKept::kNone;
            const uint32_t end = isOutside ? place + m_pieces.counts[i] : m_list[outermost].node.end;
            if (!isOutside && !atOnce)
                marks.clear(m_list[outermost].bounds);
            for (; place < end; place += m_pieces.counts[i++])
                if (!isOutside)
                    marks.put(places + place, m_pieces.counts[i], innermostBefore(count, m_pieces.owners[i]));
            if (!isOutside && !atOnce)
                marks.list(m_list[outermost].bounds, m_list.get(), pixels);
        }
        if (atOnce)
            marks.list(whole, m_list.get(), pixels);
    }

    uint32_t outermostAround(uint32_t region) const
    {
        while (region != MserKept::kNone && m_list[region].parent != MserKept::kNone)
            region = m_list[region].parent;
        return region;
    }
    // Of the regions around a piece, the innermost that is among the first `count` of the output.
    uint32_t innermostBefore(uint32_t count, uint32_t region) const
    {
        while (region != MserKept::kNone && m_list[region].rank >= count)
            region = m_list[region].parent;
        return region;
    }
};

// ---- both passes ---------------------------------------------------------------------------------------------------

// Two threads that tell each other what they found, and wait for the other's.
class Meeting
{
public:
    struct Report
    {
        bool hasMemory;
        Filled filled;
    };

    // Gives the report of the other one.
    Report exchange(size_t mine, const Report& report)
    {
        pthread_mutex_lock(&m_mutex);
        m_reports[mine] = report;
        m_hasCome[mine] = true;
        pthread_cond_signal(&m_condition);
        while (!m_hasCome[1 - mine])
            pthread_cond_wait(&m_condition, &m_mutex);
        const Report other = m_reports[1 - mine];
        pthread_mutex_unlock(&m_mutex);
        return other;
    }

private:
    pthread_mutex_t m_mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t m_condition = PTHREAD_COND_INITIALIZER;
    Report m_reports[2] = {};
    bool m_hasCome[2] = {};
};

// A call of both passes. `output` of dark regions is that of the bright ones, behind them, or another.
struct Extraction
{
    Picture picture;
    MserParameters parameters;
    uint32_t connectivity;
    uint8_t* memory; // two workspaces, or null
    Output bright, dark;
    bool isSplit;
    // Between the threads.
    Meeting meeting{};
    Filled afterDark{};

    uint8_t* memoryOf(Polarity polarity) const
    {
        const uint64_t size = mserWorkspaceSize(picture.width, picture.height);
        return memory && polarity == Polarity::dark ? memory + size : memory;
    }
    Pass makePass(Polarity polarity) const { return {polarity, picture, parameters, connectivity, memoryOf(polarity)}; }
    // What is in the output for dark regions before they come.
    Filled beforeDark(const Filled& afterBright) const { return isSplit ? Filled{} : afterBright; }
    // Where both have one output, what is in it at the end counts.
    void setCounts(const Filled& afterBright, const Filled& atEnd) const
    {
        *bright.count = afterBright.regions;
        *dark.count = atEnd.regions;
    }

    bool runOnOneThread() const
    {
        Pass brightPass = makePass(Polarity::bright), darkPass = makePass(Polarity::dark);
        if (!brightPass.run() || !darkPass.run())
            return false;
        const Filled afterBright = brightPass.fit(bright, {}), before = beforeDark(afterBright);
        brightPass.put(bright, {});
        darkPass.put(dark, before);
        setCounts(afterBright, darkPass.fit(dark, before));
        return true;
    }

    bool run()
    {
        pthread_t thread;
        if (pthread_create(&thread, nullptr, runDark, this) != 0)
            return runOnOneThread();
        Pass pass = makePass(Polarity::bright);
        const bool hasMemory = pass.run();
        const Filled filled = pass.fit(bright, {});
        const bool bothHave = meeting.exchange(0, {hasMemory, filled}).hasMemory && hasMemory;
        if (bothHave)
            pass.put(bright, {});
        pthread_join(thread, nullptr);
        if (bothHave)
            setCounts(filled, afterDark);
        return bothHave;
    }

    static void* runDark(void* extraction)
    {
        Extraction& self = *static_cast<Extraction*>(extraction);
        Pass pass = self.makePass(Polarity::dark);
        const bool hasMemory = pass.run();
        const Meeting::Report other = self.meeting.exchange(1, {hasMemory, {}});
        if (!hasMemory || !other.hasMemory)
            return nullptr;
        const Filled before = self.beforeDark(other.filled);
        pass.put(self.dark, before);
        self.afterDark = pass.fit(self.dark, before);
        return nullptr;
    }
};

Extraction extraction(const Picture& picture, const MserParameters& parameters, uint32_t connectivity, uint8_t* memory,
                      const Output& output)
{
    return {picture, parameters, connectivity, memory, output, output, false, {}, {}};
}

} // namespace

uint64_t mserWorkspaceSize(uint32_t width, uint32_t height)
{
    uint64_t size = 0;
    MserWorkspace::forEachPart(width, height, [&](uint64_t bytes) { size += bytes; });
    return size;
}

// ---- functions -----------------------------------------------------------------------------------------------------

uint32_t rvkMseru8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t delta, uint32_t minArea,
                    uint32_t maxArea, float maxVariation, float minDiversity, rvkRectangle* bounds, uint32_t* areas,
                    uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax)
{
    return rvkMseru8_v2C(src, srcWidth, srcHeight, srcWidth, delta, minArea, maxArea, maxVariation, minDiversity,
                         bounds, areas, nRegionsMax, nRegions, pixels, nPixelsMax);
}

uint32_t rvkMserExtu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t delta, uint32_t minArea,
                       uint32_t maxArea, float maxVariation, float minDiversity, rvkMserRegion* regions,
                       uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax)
{
    return rvkMserExtu8_v2C(src, srcWidth, srcHeight, srcWidth, delta, minArea, maxArea, maxVariation, minDiversity,
                            regions, nRegionsMax, nRegions, pixels, nPixelsMax);
}

uint32_t rvkMseru8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t delta,
                       uint32_t minArea, uint32_t maxArea, float maxVariation, float minDiversity, rvkRectangle* bounds,
                       uint32_t* areas, uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax)
{
    const Output output = {bounds, areas, nullptr, nRegionsMax, nRegions, pixels, nPixelsMax};
    return extraction({src, srcWidth, srcHeight, srcStride}, {delta, minArea, maxArea, maxVariation, minDiversity}, 4,
                      nullptr, output)
        .run();
}

uint32_t rvkMserExtu8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t delta,
                          uint32_t minArea, uint32_t maxArea, float maxVariation, float minDiversity,
                          rvkMserRegion* regions, uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels,
                          uint32_t nPixelsMax)
{
    return rvkMserExtu8_v3C(src, srcWidth, srcHeight, srcStride, delta, minArea, maxArea, maxVariation, minDiversity, 4,
                            RAVIK_MSER_BRIGHT | RAVIK_MSER_DARK, regions, nRegionsMax, nRegions, pixels, nPixelsMax);
}

uint32_t rvkMserExtu8_v3C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t delta,
                          uint32_t minArea, uint32_t maxArea, float maxVariation, float minDiversity,
                          uint32_t connectivity, uint32_t polarities, rvkMserRegion* regions, uint32_t nRegionsMax,
                          uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax)
{
    const Picture picture = {src, srcWidth, srcHeight, srcStride};
    const MserParameters parameters = {delta, minArea, maxArea, maxVariation, minDiversity};
    const Output output = {nullptr, nullptr, regions, nRegionsMax, nRegions, pixels, nPixelsMax};
    if (polarities == (RAVIK_MSER_BRIGHT | RAVIK_MSER_DARK))
        return extraction(picture, parameters, connectivity, nullptr, output).run();
    Pass pass(polarities == RAVIK_MSER_BRIGHT ? Polarity::bright : Polarity::dark, picture, parameters, connectivity,
              nullptr);
    if (!pass.run())
        return 0;
    pass.put(output, {});
    *nRegions = pass.fit(output, {}).regions;
    return 1;
}

namespace {

Extraction splitExtraction(const Picture& picture, const MserParameters& parameters, const Output& bright,
                           const Output& dark)
{
    return {picture, parameters, 4, nullptr, bright, dark, true, {}, {}};
}

} // namespace

uint32_t rvkMserSplitExtu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint32_t delta, uint32_t minArea, uint32_t maxArea, float maxVariation, float minDiversity,
                            rvkMserRegion* brightRegions, uint32_t nBrightRegionsMax, uint32_t* nBrightRegions,
                            uint32_t* brightPixels, uint32_t nBrightPixelsMax, rvkMserRegion* darkRegions,
                            uint32_t nDarkRegionsMax, uint32_t* nDarkRegions, uint32_t* darkPixels,
                            uint32_t nDarkPixelsMax)
{
    return splitExtraction(
               {src, srcWidth, srcHeight, srcStride}, {delta, minArea, maxArea, maxVariation, minDiversity},
               {nullptr, nullptr, brightRegions, nBrightRegionsMax, nBrightRegions, brightPixels, nBrightPixelsMax},
               {nullptr, nullptr, darkRegions, nDarkRegionsMax, nDarkRegions, darkPixels, nDarkPixelsMax})
        .run();
}

uint32_t irvkMserSplitExtu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint32_t delta, uint32_t minArea, uint32_t maxArea, float maxVariation, float minDiversity,
                             rvkMserRegion* brightRegions, uint32_t nBrightRegionsMax, uint32_t* nBrightRegions,
                             uint32_t* brightPixels, uint32_t nBrightPixelsMax, rvkMserRegion* darkRegions,
                             uint32_t nDarkRegionsMax, uint32_t* nDarkRegions, uint32_t* darkPixels,
                             uint32_t nDarkPixelsMax)
{
    return splitExtraction(
               {src, srcWidth, srcHeight, srcStride}, {delta, minArea, maxArea, maxVariation, minDiversity},
               {nullptr, nullptr, brightRegions, nBrightRegionsMax, nBrightRegions, brightPixels, nBrightPixelsMax},
               {nullptr, nullptr, darkRegions, nDarkRegionsMax, nDarkRegions, darkPixels, nDarkPixelsMax})
        .runOnOneThread();
}

namespace {

uint32_t extractByHandle(void* handle, const Picture& picture, const Output& output)
{
    auto* const header = static_cast<MserHandle*>(handle);
    return extraction(picture, header->parameters, 8, reinterpret_cast<uint8_t*>(header + 1), output).run();
}

} // namespace

uint32_t rvkMserNN8u8C(void* handle, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                       rvkRectangle* bounds, uint32_t* areas, uint32_t nRegionsMax, uint32_t* nRegions,
                       uint32_t* pixels, uint32_t nPixelsMax)
{
    return extractByHandle(handle, {src, srcWidth, srcHeight, srcStride},
                           {bounds, areas, nullptr, nRegionsMax, nRegions, pixels, nPixelsMax});
}

uint32_t rvkMserExtNN8u8C(void* handle, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                          rvkMserRegion* regions, uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels,
                          uint32_t nPixelsMax)
{
    return extractByHandle(handle, {src, srcWidth, srcHeight, srcStride},
                           {nullptr, nullptr, regions, nRegionsMax, nRegions, pixels, nPixelsMax});
}

} // namespace rvk
