// The generators of the segment sets and the run through them.
// Coordinates are chosen so that crossings round badly, meet vertices or lie over one another.

#include "segmentSets.h"

#include "CoutCapture.h"
#include "MeshChecker.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <random>
#include <stdexcept>
#include <utility>

namespace QUOR_KELM25D {
namespace testing_support {

namespace {

/// v moved by some units in the last place.
double nudge(double v, int units) {
    for (int i = std::abs(units); i > 0; --i)
        v = std::nextafter(v, units < 0 ? -HUGE_VAL : HUGE_VAL);
    return v;
}

/// Draws numbers and collects a set. Numbers are the same with every standard library.
class Maker {
public:
    explicit Maker(std::uint64_t seed) : random(seed * 2654435761u + 1) {}

    double unit() { return std::ldexp(static_cast<double>(random() >> 11), -53); }
    double between(double a, double b) { return a + (b - a) * unit(); }
    int integer(int a, int b) { return a + static_cast<int>(random() % static_cast<unsigned>(b - a + 1)); }
    bool chance(double probability) { return unit() < probability; }
    template <class T>
    const T& pick(const std::vector<T>& v) {
        return v[random() % v.size()];
    }

    Point2 at(double x, double y) { return Point2(x, y, height++); }
    Point2 onLattice(int side) { return at(integer(0, side), integer(0, side)); }
    Point2 nudged(double x, double y, int maxUnits) {
        return at(nudge(x, integer(-maxUnits, maxUnits)), nudge(y, integer(-maxUnits, maxUnits)));
    }
    /// A place on or beside a segment, as a caller would compute it.
    Point2 beside(const Segment2& s, double t, int maxUnits = 0) {
        const Point2 a = s.getSrc(), b = s.getTrg();
        return nudged(a.x() + (b.x() - a.x()) * t, a.y() + (b.y() - a.y()) * t, maxUnits);
    }

    void point(const Point2& p) { set.points.push_back(scaled(p)); }
    /// Goes to the last of up to four batches.
    void segment(const Point2& a, const Point2& b) {
        if (set.batches.size() < maxBatches && !set.batches.back().empty() && chance(0.1))
            set.batches.emplace_back();
        vAll.push_back(chance(0.5) ? Segment2(a, b) : Segment2(b, a));
        set.batches.back().emplace_back(scaled(vAll.back().getSrc()), scaled(vAll.back().getTrg()));
    }
    /// From low to high segments and up to some points, all made by one function.
    template <class Place>
    void segmentsAndPoints(int low, int high, int maxPoints, const Place& place) {
        for (int i = integer(low, high); i > 0; --i)
            segment(place(), place());
        for (int i = integer(0, maxPoints); i > 0; --i)
            point(place());
    }
    std::mt19937_64 random;
    std::vector<Segment2> vAll; // the segments so far, before they are scaled
    SegmentSet set{"", {}, {{}}};
    double scale = 1.0;

private:
    Point2 scaled(const Point2& p) const { return Point2(p.x() * scale, p.y() * scale, p.z()); }

    const std::size_t maxBatches = random() % 4 + 1;
    double height = 0.0;
};

/// Nearly parallel long segments that cross in a cluster of points a few units apart: the rounded crossing
/// easily lies outside the triangles that meet at the exact one.
void drawRoundedCrossings(Maker& m) {
    const double x = m.between(-1, 2), y = m.chance(0.3) ? 0.5 : m.between(-100, 100);
    const double direction = m.between(0, 7), spread = std::ldexp(1.0, -m.integer(10, 48));
    const double length = std::ldexp(1.0, m.integer(-2, 10));
    const auto along = [&](double angle, double t, int maxUnits) {
        return m.nudged(x + t * std::cos(angle), y + t * std::sin(angle), maxUnits);
    };
    for (int i = m.integer(3, 12); i > 0; --i) {
        const double angle = direction + spread * m.integer(-8, 8);
        m.segment(along(angle, -length * m.between(0.1, 1), 0), along(angle, length * m.between(0.1, 1), 0));
    }
    m.segmentsAndPoints(0, 0, 40, [&] {
        return along(direction, length * std::ldexp(m.between(-1, 1), -m.integer(5, 55)), 4);
    });
    for (int i = m.integer(0, 3); i > 0; --i)
        m.segment(m.at(m.between(x - 1, x + 1), y - length), m.at(m.between(x - 1, x + 1), y + length));
}

/// Ends and other vertices beside segments, which they miss by the rounding, by up to three units in the last
/// place, or by about 1e-6, where crossings begin to snap.
void drawNearSegments(Maker& m) {
    const int miss = m.integer(0, 2), maxUnits = miss == 1 ? 3 : 0;
    const double noise = miss == 2 ? std::ldexp(1e-6, m.integer(-3, 3)) : 0.0;
    const auto anywhere = [&] { return m.at(m.unit(), m.unit()); };
    const auto near = [&](const Point2& p) {
        return m.at(p.x() + m.between(-noise, noise), p.y() + m.between(-noise, noise));
    };
    m.segmentsAndPoints(2, miss == 1 ? 12 : 5, 0, anywhere);
    for (int i = m.integer(3, 35); i > 0; --i) {
        const Point2 p = m.beside(m.pick(m.vAll), m.unit(), maxUnits), end = m.pick(m.vAll).getSrc();
        const Point2 aOther[] = {anywhere(), m.beside(m.pick(m.vAll), m.unit(), maxUnits), p, end};
        if (miss == 1 && m.chance(0.7))
            m.point(p);
        else
            m.segment(near(p), near(aOther[m.integer(0, miss == 2 ? 3 : 1)]));
    }
}

/// Ends in the middle of other segments, parts of other segments, and the same again.
void drawHangingEdges(Maker& m) {
    for (int i = m.integer(3, 8); i > 0; --i) {
        const Point2 a = m.onLattice(64);
        m.segment(a, m.at(a.x() + 8 * m.integer(-8, 8), a.y() + 8 * m.integer(-8, 8)));
    }
    const std::vector<Segment2> vLong = m.vAll;
    const auto along = [&](const Segment2& s) { return m.beside(s, 0.125 * m.integer(0, 8)); };
    for (int i = m.integer(5, 25); i > 0; --i) {
        const Segment2& base = m.pick(vLong);
        const int choice = m.integer(0, 9);
        if (choice == 0)
            m.point(along(base));
        else if (choice == 1)
            m.segment(base.getSrc(), base.getTrg());
        else
            m.segment(along(base), choice < 5 ? m.onLattice(64) : along(choice < 8 ? base : m.pick(vLong)));
    }
}

/// Segments anywhere, or on so small a lattice that they run through vertices and most crossings are
/// degenerate.
void drawCrossings(Maker& m, double offset, double step) {
    const int side = m.chance(0.7) ? m.integer(2, 15) : 0, shear = m.integer(-3, 3);
    m.segmentsAndPoints(5, 45, 60, [&] {
        const Point2 p = side != 0 ? m.onLattice(side) : m.at(m.between(0, 99), m.between(0, 99));
        return m.at(offset + step * (p.x() + shear * p.y()), offset + step * p.y());
    });
}

/// So far from the origin that places are neighbouring doubles, or nearly so.
void drawLastBits(Maker& m) {
    const double offset = m.pick<double>({1e6, 1e12, 1e15, 0x1p40, -0x1p40});
    drawCrossings(m, offset, nudge(std::fabs(offset), m.integer(1, 8)) - std::fabs(offset));
}

struct Kind {
    const char* name;
    void (*draw)(Maker&);
    double extent; // about the largest coordinate, a power of two
    bool bMayConform;
};
const Kind aKind[] = {{"rounded", drawRoundedCrossings, 128, false},
                      {"near", drawNearSegments, 1, false},
                      {"hanging", drawHangingEdges, 64, true},
                      {"random", [](Maker& m) { drawCrossings(m, 0, 1); }, 64, true},
                      {"last bits", drawLastBits, 0x1p50, false}};

/// One run of a set through one variant.
class Run {
public:
    Run(const SegmentSet& set_, unsigned variant)
        : set(set_), pointsWhen(variant % 3), bBulk(variant / 3 % 2 != 0), bOriented(variant / 6 % 2 != 0),
          bAfterwards(variant / 12 % 2 != 0), random(variant),
          bMayWait(set.strategy != CIS_CONSTRAINED_DELAUNAY) {}

    std::string findFault() {
        const CoutCapture capture, captureErrors(std::cerr);
        try {
            run();
        } catch (const std::exception& fault) {
            return fault.what();
        }
        return "";
    }

private:
    void run() {
        if (pointsWhen == 0) insertPoints(set.points.size());
        for (const std::vector<Segment2>& batch : set.batches) {
            if (pointsWhen == 2)
                insertPoints(set.points.size() * (vGraphs.size() + 1) / (set.batches.size() + 1));
            vGraphs.push_back(dt.createConstraint(batch, set.strategy, bOriented));
            bMayWait = bMayWait || !dt.is2D();
            checkAll();
        }
        insertPoints(set.points.size());
        checkAll();
        CoutCapture capture;
        if (dt.is2D()) dt.applyConstraintsAndZones();
        // Conforming insertion gives up where doubles do not suffice.
        bMayWait = set.strategy != CIS_CONSTRAINED_DELAUNAY && !capture.take().empty();
        checkAll();
        // Conforming segments that bend by a rounding may need more vertices than are worth the time.
        if (bAfterwards && set.strategy == CIS_CONSTRAINED_DELAUNAY && dt.is2D()) split();
        if (bAfterwards && dt.is2D()) remove();
    }

    static void require(bool bHolds, const std::string& fault) {
        if (!bHolds) throw std::runtime_error(fault);
    }

    void insertPoints(std::size_t last) {
        const std::vector<Point2> v(set.points.begin() + numInserted, set.points.begin() + last);
        numInserted = last;
        if (bBulk) dt.insert(v);
        for (std::size_t i = 0; !bBulk && i < v.size(); ++i)
            dt.insert(v[i]);
    }

    void checkAll() const {
        std::string fault = findMeshFault(dt);
        for (std::size_t i = 0; i < vGraphs.size() && fault.empty(); ++i)
            fault = findConstraintFault(dt, set.batches[i], vGraphs[i], bMayWait);
        require(fault.empty(), fault);
    }

    void split() {
        for (const ConstraintGraph2* pGraph : vGraphs) {
            std::vector<Point2*> vEnds;
            pGraph->getPolygonVertices(vEnds);
            for (std::size_t i = 0; i < vEnds.size(); i += 2 * (1 + random() % 7)) {
                const Point2 &a = *vEnds[i], &b = *vEnds[i + 1];
                ConstraintSegment2* pSegment = dt.getConstraintSegment(vEnds[i], vEnds[i + 1]);
                if (pSegment == nullptr) continue; // divided before
                const double t = 0.125 * static_cast<double>(random() % 8);
                const Point2 p(a.x() + (b.x() - a.x()) * t, a.y() + (b.y() - a.y()) * t, a.z());
                const Point2* pSplit = pSegment->insertAndSplit(p);
                require(pSplit != nullptr && *pSplit == p, "another vertex than asked for");
                require(pSegment->isAlive() == (pSplit == &a || pSplit == &b), "no split");
            }
        }
        checkAll();
    }

    void remove() {
        std::vector<Point2*> vVertices = allVertices(dt);
        std::sort(vVertices.begin(), vVertices.end(), [](Point2* a, Point2* b) { return *a < *b; });
        for (Point2* pVtx : vVertices) {
            if (!dt.is2D()) return;
            if (random() % 4 == 0) continue;
            const unsigned numLeft = dt.numberOfPoints() - (dt.isConstraint(pVtx) ? 0 : 1);
            dt.remove(pVtx);
            require(dt.numberOfPoints() == numLeft, "a wrong number of vertices");
        }
        checkAll();
    }

    const SegmentSet& set;
    const unsigned pointsWhen; // 0 before, 1 after, 2 between the segments
    const bool bBulk, bOriented, bAfterwards;
    std::mt19937_64 random;
    Kelm_2D dt;
    std::vector<ConstraintGraph2*> vGraphs;
    std::size_t numInserted = 0; // points so far
    bool bMayWait;
};

} // namespace

std::vector<SegmentSet> makeAllFamilies(std::uint64_t seed) {
    std::vector<SegmentSet> vSets;
    for (const Kind& kind : aKind) {
        Maker m(seed);
        m.set.name = kind.name;
        kind.draw(m);
        if (kind.bMayConform && m.chance(0.15))
            m.set.strategy = m.chance(0.5) ? CIS_CONFORMING_SURFACE_HEIGHT : CIS_CONFORMING_LINEAR_HEIGHT;
        vSets.push_back(m.set);
    }
    for (const int numParts : {1, 2}) { // one that is smaller or larger by powers of ten, or two in one box
        Maker m(seed);
        const double size =
            numParts == 2 ? 1
                          : m.pick<double>({1e-9, 1e-150, 1e147, 1e-5, 1e-6, 1e-7, 1e9, 0x1p-30, 0x1p400});
        m.set.name = "scaled or mixed:";
        for (int part = 0; part < numParts; ++part) {
            const Kind& kind = aKind[m.random() % std::size(aKind)];
            m.set.name += std::string(" ") + kind.name;
            m.vAll.clear();
            m.scale = size / kind.extent;
            kind.draw(m);
        }
        std::shuffle(m.set.batches.begin(), m.set.batches.end(), m.random);
        vSets.push_back(m.set);
    }
    return vSets;
}

SegmentSet makeManySegments(std::size_t n, std::uint64_t seed) {
    Maker m(seed);
    for (std::size_t i = 0; i < n; ++i) {
        const double x = m.unit(), y = m.unit();
        m.segment(m.at(x, y), m.at(x + m.between(-0.05, 0.05), y + m.between(-0.05, 0.05)));
    }
    return m.set;
}

std::string insertAndCheck(const SegmentSet& set, unsigned variant) {
    return Run(set, variant).findFault();
}

} // namespace testing_support
} // namespace QUOR_KELM25D
