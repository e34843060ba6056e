// The generators of the segment sets and the run through them.
// Coordinates are chosen so that crossings round badly, meet vertices or lie over one another.

#include "segmentSets.h"

#include "CoutCapture.h"
#include "MeshChecker.h"

#include <kelm25d/Bbox2.h>
#include <kelm25d/KelmException.h>

#include <algorithm>
#include <cmath>
#include <random>
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
    explicit Maker(std::uint64_t seed) : random(seed * 2654435761u + 1), set{{}, {{}}} {}

    double unit() { return std::ldexp(static_cast<double>(random() >> 11), -53); }
    double between(double a, double b) { return a + (b - a) * unit(); }
    int integer(int a, int b) { return a + static_cast<int>(random() % static_cast<unsigned>(b - a + 1)); }
    bool chance(double probability) { return unit() < probability; }
    template <class T>
    const T& pick(const std::vector<T>& v) {
        return v[random() % v.size()];
    }

    Point2 at(double x, double y) { return Point2(x, y, height++); }
    Point2 inBox() { return at(unit(), unit()); }
    Point2 onLattice(int side) { return at(integer(0, side), integer(0, side)); }
    /// A place on or beside a segment, as a caller would compute it.
    Point2 beside(const Segment2& s, double t, int maxUnits = 0) {
        const Point2 a = s.getSrc(), b = s.getTrg();
        const double x = a.x() + (b.x() - a.x()) * t, y = a.y() + (b.y() - a.y()) * t;
        return at(nudge(x, integer(-maxUnits, maxUnits)), nudge(y, integer(-maxUnits, maxUnits)));
    }

    void point(const Point2& p) { set.points.push_back(p); }
    void segment(const Point2& a, const Point2& b) {
        vAll.push_back(chance(0.5) ? Segment2(a, b) : Segment2(b, a));
        set.batches.back().push_back(vAll.back());
    }
    /// From low to high points, or segments whose ends are both made by one function.
    template <class Place>
    void points(int low, int high, const Place& place) {
        for (int i = integer(low, high); i > 0; --i)
            point(place());
    }
    template <class Place>
    void segments(int low, int high, const Place& place) {
        for (int i = integer(low, high); i > 0; --i)
            segment(place(), place());
    }
    void ring(const std::vector<Point2>& v) {
        if (!set.batches.back().empty()) set.batches.emplace_back();
        const bool bReverse = chance(0.5);
        const std::size_t n = v.size(), first = random() % n;
        for (std::size_t k = 0; k < n; ++k) {
            const std::size_t i = (bReverse ? 2 * n - k : k) + first;
            set.batches.back().emplace_back(v[i % n], v[(bReverse ? i + n - 1 : i + 1) % n]);
        }
    }

    /// Hands the set over; segments that are one batch are divided into up to four.
    SegmentSet finish(bool bMayConform = false) {
        if (bMayConform && chance(0.15))
            set.strategy = chance(0.5) ? CIS_CONFORMING_SURFACE_HEIGHT : CIS_CONFORMING_LINEAR_HEIGHT;
        if (set.batches.size() > 1) return std::move(set);
        const std::vector<Segment2> v = std::move(set.batches[0]);
        std::vector<std::size_t> vCuts{0, v.size()};
        for (int i = integer(0, 3); i > 0; --i)
            vCuts.push_back(random() % v.size());
        std::sort(vCuts.begin(), vCuts.end());
        set.batches.clear();
        for (std::size_t i = 0; i + 1 < vCuts.size(); ++i)
            if (vCuts[i] != vCuts[i + 1])
                set.batches.emplace_back(v.begin() + vCuts[i], v.begin() + vCuts[i + 1]);
        return std::move(set);
    }

    std::mt19937_64 random;
    std::vector<Segment2> vAll; // the segments so far, rings left out

private:
    SegmentSet set;
    double height = 0.0;
};

/// Nearly parallel long segments that cross in a cluster of points a few units apart: the rounded crossing
/// easily lies outside the triangles that meet at the exact one.
void drawRoundedCrossings(Maker& m) {
    const double x = m.between(-1, 2), y = m.chance(0.3) ? 0.5 : m.between(-100, 100);
    const double direction = m.between(0, 7), spread = std::ldexp(1.0, -m.integer(10, 48));
    const double length = std::ldexp(1.0, m.integer(-2, 10));
    for (int i = m.integer(3, 12); i > 0; --i) {
        const double angle = direction + spread * m.integer(-8, 8);
        const double dx = length * std::cos(angle), dy = length * std::sin(angle);
        const double before = m.between(0.1, 1), after = m.between(0.1, 1);
        m.segment(m.at(x - before * dx, y - before * dy), m.at(x + after * dx, y + after * dy));
    }
    m.points(3, 40, [&] {
        const double t = length * std::ldexp(m.between(-1, 1), -m.integer(5, 55));
        return m.at(nudge(x + t * std::cos(direction), m.integer(-4, 4)),
                    nudge(y + t * std::sin(direction), m.integer(-4, 4)));
    });
    for (int i = m.integer(0, 3); i > 0; --i)
        m.segment(m.at(m.between(x - 1, x + 1), y - length), m.at(m.between(x - 1, x + 1), y + length));
}

/// Ends and other vertices beside segments, which they miss by the rounding, by up to three units in the last
/// place, or by about 1e-6, where crossings begin to snap.
void drawNearSegments(Maker& m) {
    const int miss = m.integer(0, 2), maxUnits = miss == 1 ? 3 : 0;
    const double scale = miss == 0 && m.chance(0.5) ? std::ldexp(1.0, m.integer(-20, 30)) : 1.0;
    const double noise = miss == 2 ? std::ldexp(1e-6, m.integer(-3, 3)) : 0.0;
    const auto anywhere = [&] { return m.at(scale * m.unit(), scale * m.unit()); };
    const auto near = [&](const Point2& p) {
        return m.at(p.x() + m.between(-noise, noise), p.y() + m.between(-noise, noise));
    };
    m.segments(2, miss == 1 ? 12 : 5, anywhere);
    for (int i = m.integer(3, 35); i > 0; --i) {
        const Point2 p = m.beside(m.pick(m.vAll), m.unit(), maxUnits), end = m.pick(m.vAll).getSrc();
        const double choice = m.unit();
        if (miss == 1 && m.chance(0.7))
            m.point(p);
        else if (choice < 0.5)
            m.segment(near(p), anywhere());
        else if (choice < 0.75 || miss != 2)
            m.segment(near(p), near(m.beside(m.pick(m.vAll), m.unit(), maxUnits)));
        else
            m.segment(near(p), near(choice < 0.9 ? p : end));
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
    const auto on = [&] { return along(m.pick(vLong)); };
    for (int i = m.integer(5, 25); i > 0; --i) {
        const Segment2& base = m.pick(vLong);
        const double choice = m.unit();
        if (choice < 0.3)
            m.segment(on(), m.onLattice(64));
        else if (choice < 0.6)
            m.segment(along(base), along(base));
        else if (choice < 0.7)
            m.segment(base.getSrc(), base.getTrg());
        else if (choice < 0.9)
            m.segment(on(), on());
        else
            m.point(on());
    }
}

/// Intervals over one another on a few lines, exact ones or such as doubles only approximate.
void drawCollinearOverlaps(Maker& m) {
    const bool bExact = m.chance(0.5);
    for (int line = m.integer(1, 4); line > 0; --line) {
        const double scale = bExact ? 1.0 : m.unit();
        const double x = scale * m.integer(-20, 20), y = scale * m.integer(-20, 20);
        const double dx = scale * m.integer(-7, 7), dy = scale * m.integer(-7, 7);
        const auto on = [&] {
            const int k = m.integer(-10, 10);
            return m.at(x + k * dx, y + k * dy);
        };
        m.segments(2, 14, on);
        m.points(0, 4, on);
    }
}

/// Segments that run exactly through many vertices, and cross one another there.
void drawThroughVertices(Maker& m) {
    const int side = m.integer(4, 14);
    const double dx = m.integer(-6, 6), dy = m.integer(1, 6), ex = m.integer(1, 6), ey = m.integer(-6, 6);
    const auto on = [&](int i, int j) { return m.at(i * dx + j * ex, i * dy + j * ey); };
    for (int k = 0; k < side * side; ++k)
        if (m.chance(0.7)) m.point(on(k / side, k % side));
    for (int k = m.integer(4, 16); k > 0; --k) {
        const int i = m.integer(0, side - 1);
        const double choice = m.unit(); // a row, a column or a diagonal
        m.segment(choice < 0.4 ? on(i, 0) : on(0, i),
                  choice < 0.4 ? on(i, side - 1) : (choice < 0.8 ? on(side - 1, i) : on(i, 0)));
    }
}

/// Rings that have parts of their boundaries in common, in either direction, and cross one another.
void drawSharedPolygons(Maker& m) {
    const int side = m.integer(2, 6);
    const double noise = m.chance(0.5) ? 0.0 : 0.4;
    std::vector<Point2> vGrid;
    for (int k = 0; k < (side + 1) * (side + 1); ++k)
        vGrid.push_back(m.at(k / (side + 1) + noise * m.unit(), k % (side + 1) + noise * m.unit()));
    const auto corner = [&](int i, int j) { return vGrid[static_cast<std::size_t>(i * (side + 1) + j)]; };
    for (int polygon = m.integer(2, 6); polygon > 0; --polygon) {
        const auto [i0, i1] = std::minmax({m.integer(0, side), m.integer(0, side)});
        const auto [j0, j1] = std::minmax({m.integer(0, side), m.integer(0, side)});
        if (i0 == i1 || j0 == j1) continue;
        const bool bAll = m.chance(0.7); // vertices along the sides, not only the corners
        std::vector<Point2> v;
        int i = i0, j = j0;
        for (const auto& [di, dj] : {std::pair(1, 0), {0, 1}, {-1, 0}, {0, -1}}) {
            const int length = di != 0 ? i1 - i0 : j1 - j0;
            for (int k = 0; k < length; ++k, i += di, j += dj)
                if (bAll || k == 0) v.push_back(corner(i, j));
        }
        m.ring(v);
    }
    if (m.chance(0.3)) m.ring({m.onLattice(side), m.onLattice(side), m.onLattice(side), m.onLattice(side)});
    m.ring({corner(0, 0), corner(side, 0), corner(side, side)});
}

/// Segments between doubles that are neighbours or nearly so, far from the origin.
void drawLastBits(Maker& m) {
    const double offset = m.pick<double>({1e6, 1e9, 1e12, 1e15, 0x1p40, -0x1p40, 3e14});
    const double unit =
        std::ldexp(std::nextafter(std::fabs(offset), HUGE_VAL) - std::fabs(offset), m.integer(0, 3));
    const int side = m.integer(3, m.chance(0.5) ? 15 : 3000);
    const auto anywhere = [&] {
        const Point2 p = m.onLattice(side);
        return m.at(offset + p.x() * unit, offset + p.y() * unit);
    };
    m.segments(5, 30, anywhere);
    m.points(0, 30, anywhere);
}

/// Segments anywhere, or on so small a lattice that most crossings are degenerate.
void drawRandomCrossings(Maker& m) {
    const int side = m.chance(0.5) ? m.integer(2, 11) : 0;
    const auto anywhere = [&] { return side != 0 ? m.onLattice(side) : m.inBox(); };
    m.segments(5, 45, anywhere);
    m.points(0, 60, anywhere);
}

/// Lines and rays through one place: exactly, or as well as doubles can.
void drawStars(Maker& m) {
    for (int star = m.integer(1, 2); star > 0; --star) {
        const bool bExact = m.chance(0.5);
        const double x = bExact ? m.integer(-9, 9) : m.between(-9, 9),
                     y = bExact ? m.integer(-9, 9) : m.unit();
        const Point2 centre = m.at(x, y);
        if (m.chance(0.3)) m.point(centre);
        for (int i = m.integer(4, 22); i > 0; --i) {
            const double angle = m.between(0, 7);
            const double dx = bExact ? m.integer(-9, 9) : std::cos(angle);
            const double dy = bExact ? m.integer(-9, 9) : std::sin(angle);
            const double before = bExact ? m.integer(0, 4) : m.unit(),
                         after = bExact ? m.integer(1, 4) : m.unit();
            const Point2 end = m.at(x + after * dx, y + after * dy);
            m.segment(m.chance(0.2) ? centre : m.at(x - before * dx, y - before * dy), end);
        }
    }
}

template <void (*draw)(Maker&), bool bMayConform = false>
SegmentSet make(std::uint64_t seed) {
    Maker m(seed);
    draw(m);
    return m.finish(bMayConform);
}

void transform(SegmentSet& set, double shiftX, double shiftY, double scale) {
    const auto moved = [&](const Point2& p) {
        return Point2((p.x() - shiftX) * scale, (p.y() - shiftY) * scale, p.z());
    };
    std::transform(set.points.begin(), set.points.end(), set.points.begin(), moved);
    for (std::vector<Segment2>& batch : set.batches)
        for (Segment2& s : batch)
            s = Segment2(moved(s.getSrc()), moved(s.getTrg()));
}

constexpr std::size_t numBase = 9; // the families that the last two draw from

/// Other sets, smaller or larger by powers of ten.
SegmentSet makeScaled(std::uint64_t seed) {
    Maker m(seed);
    const std::uint64_t baseSeed = m.random() >> 20;
    const SegmentFamily& base = segmentFamilies()[baseSeed % numBase];
    SegmentSet set = base.make(baseSeed / numBase);
    set.strategy = CIS_CONSTRAINED_DELAUNAY;
    if (base.make == make<drawLastBits>) transform(set, 0, 0, 1e-15);
    transform(set, 0, 0, m.pick<double>({1e-9, 1e-150, 1e147, 1e-5, 1e-6, 1e-7, 1e9, 0x1p-30, 0x1p400}));
    return set;
}

/// Two other sets in one box.
SegmentSet makeMixed(std::uint64_t seed) {
    Maker m(seed);
    SegmentSet mixed;
    for (int part = 0; part < 2; ++part) {
        const std::uint64_t baseSeed = m.random() >> 20;
        SegmentSet set = segmentFamilies()[baseSeed % numBase].make(baseSeed / numBase);
        Bbox2 box;
        for (const std::vector<Segment2>& batch : set.batches)
            for (const Segment2& s : batch)
                box.add(s.getSrc()), box.add(s.getTrg());
        const double size =
            std::max({box.get_maxX() - box.get_minX(), box.get_maxY() - box.get_minY(), 1e-12});
        transform(set, box.get_minX(), box.get_minY(), std::ldexp(1.0, -std::ilogb(size)));
        mixed.points.insert(mixed.points.end(), set.points.begin(), set.points.end());
        mixed.batches.insert(mixed.batches.end(), set.batches.begin(), set.batches.end());
    }
    std::shuffle(mixed.batches.begin(), mixed.batches.end(), m.random);
    return mixed;
}

/// What a run throws, so that it ends at the first fault.
struct Fault {
    std::string text;
};

void check(const std::string& fault) {
    if (!fault.empty()) throw Fault{fault};
}

void require(bool bHolds, const std::string& fault) {
    if (!bHolds) throw Fault{fault};
}

/// One run of a set through one variant.
class Run {
public:
    Run(const SegmentSet& set_, unsigned variant)
        : set(set_), pointsWhen(variant % 3), bBulk(variant / 3 % 2 != 0), bOriented(variant / 6 % 2 != 0),
          bAfterwards(variant / 12 % 2 != 0), random(variant),
          bMayWait(set.strategy != CIS_CONSTRAINED_DELAUNAY) {}

    std::string findFault() {
        CoutCapture capture;
        try {
            run();
        } catch (const Fault& fault) {
            return stage + ": " + fault.text;
        } catch (const KelmException&) {
            return stage + ": a failed check: " + capture.take();
        }
        const std::string printed = capture.take();
        const bool bMayPrint = bDegenerate || set.strategy != CIS_CONSTRAINED_DELAUNAY;
        return printed.empty() || bMayPrint ? "" : "printed: " + printed;
    }

private:
    void run() {
        if (pointsWhen == 0) insertPoints(set.points.size());
        for (const std::vector<Segment2>& batch : set.batches) {
            if (pointsWhen == 2)
                insertPoints(set.points.size() * (vGraphs.size() + 1) / (set.batches.size() + 1));
            stage = "batch " + std::to_string(vGraphs.size());
            vGraphs.push_back(dt.createConstraint(batch, set.strategy, bOriented));
            bMayWait = bMayWait || !dt.is2D();
            checkNumber(batch);
            check(findMeshFault(dt));
            check(findConstraintFault(dt, batch, vGraphs.back(), bMayWait));
        }
        stage = "points after the segments";
        insertPoints(set.points.size());
        checkAll();
        apply();
        checkHeights();
        // Conforming segments that bend by a rounding may need more vertices than are worth the time.
        if (bAfterwards && set.strategy == CIS_CONSTRAINED_DELAUNAY && dt.is2D()) split();
        if (bAfterwards && dt.is2D()) remove();
    }

    void insertPoints(std::size_t last) {
        const std::vector<Point2> v(set.points.begin() + numInserted, set.points.begin() + last);
        numInserted = last;
        if (bBulk) dt.insert(v);
        for (std::size_t i = 0; !bBulk && i < v.size(); ++i)
            dt.insert(v[i]);
    }

    void checkAll() const {
        check(findMeshFault(dt));
        for (std::size_t i = 0; i < set.batches.size(); ++i)
            check(findConstraintFault(dt, set.batches[i], vGraphs[i], bMayWait));
    }

    void apply() {
        stage = "applyConstraintsAndZones";
        const unsigned numBefore = dt.numberOfPoints();
        const bool bNothingWaits = !bMayWait;
        CoutCapture capture;
        if (dt.is2D()) dt.applyConstraintsAndZones();
        // Conforming insertion gives up where doubles do not suffice.
        bMayWait = set.strategy != CIS_CONSTRAINED_DELAUNAY && !capture.take().empty();
        require(!bNothingWaits || dt.numberOfPoints() == numBefore, "new vertices though nothing waited");
        checkAll();
    }

    /// Two segments cross once, or a few times where their pieces have been bent by the rounding. Many more
    /// vertices mean that segments which nearly coincide keep cutting one another.
    void checkNumber(const std::vector<Segment2>& batch) {
        for (const Segment2& s : batch) {
            bDegenerate = bDegenerate || s.getSrc() == s.getTrg();
            vEnds.insert(vEnds.end(), {s.getSrc(), s.getTrg()});
        }
        const std::size_t n = vEnds.size() / 2;
        require(set.strategy != CIS_CONSTRAINED_DELAUNAY ||
                    dt.numberOfPoints() <= numInserted + 2 * n + n * n,
                std::to_string(dt.numberOfPoints()) + " vertices of " + std::to_string(n) + " segments");
    }

    /// Heights come from the given ones by interpolation.
    void checkHeights() const {
        std::vector<Point2> vGiven = vEnds;
        vGiven.insert(vGiven.end(), set.points.begin(), set.points.end());
        const auto [low, high] = std::minmax_element(
            vGiven.begin(), vGiven.end(), [](const Point2& p, const Point2& q) { return p.z() < q.z(); });
        const double tolerance = set.strategy == CIS_CONFORMING_SURFACE_HEIGHT ? 1e-6 : 0.0;
        for (const Point2* pVtx : allVertices(dt))
            require(pVtx->z() >= low->z() - tolerance && pVtx->z() <= high->z() + tolerance,
                    "height " + std::to_string(pVtx->z()) + " of a new vertex");
    }

    void split() {
        stage = "insertAndSplit";
        std::vector<std::pair<std::pair<Point2, Point2>, ConstraintSegment2*>> vByPlace;
        for (ConstraintSegment2* pSegment : aliveSegments(dt))
            vByPlace.push_back({std::minmax(*pSegment->getSrc(), *pSegment->getTrg()), pSegment});
        std::sort(vByPlace.begin(), vByPlace.end()); // addresses differ from run to run
        for (std::size_t i = 0; i < vByPlace.size(); i += 1 + random() % 7) {
            ConstraintSegment2* pSegment = vByPlace[i].second;
            if (!pSegment->isAlive()) continue; // by a split before
            const Point2 &a = vByPlace[i].first.first, &b = vByPlace[i].first.second;
            const double t = 0.125 * static_cast<double>(random() % 8); // with 1, not exactly the other end
            const Point2 p(a.x() + (b.x() - a.x()) * t, a.y() + (b.y() - a.y()) * t, a.z());
            const Point2* pSplit = pSegment->insertAndSplit(p);
            require(pSplit != nullptr && *pSplit == p, "another vertex than asked for");
            const bool bAtEnd = pSplit == pSegment->getSrc() || pSplit == pSegment->getTrg();
            require(pSegment->isAlive() == bAtEnd, "no split");
        }
        checkAll();
    }

    void remove() {
        stage = "remove";
        std::vector<Point2*> vVertices = allVertices(dt);
        std::sort(vVertices.begin(), vVertices.end(), [](Point2* a, Point2* b) { return *a < *b; });
        for (Point2* pVtx : vVertices) {
            if (!dt.is2D()) return;
            if (random() % 4 == 0) continue;
            const bool bConstraint = dt.isConstraint(pVtx);
            const unsigned numLeft = dt.numberOfPoints() - (bConstraint ? 0 : 1);
            CoutCapture capture, captureErrors(std::cerr);
            dt.remove(pVtx);
            require(dt.numberOfPoints() == numLeft, "a wrong number of vertices");
            require(bConstraint != capture.take().empty(), "a warning too few or too many");
        }
        checkAll();
    }

    const SegmentSet& set;
    const unsigned pointsWhen; // 0 before, 1 after, 2 between the segments
    const bool bBulk, bOriented, bAfterwards;
    std::mt19937_64 random;
    Kelm_2D dt;
    std::vector<ConstraintGraph2*> vGraphs;
    std::vector<Point2> vEnds; // of the segments so far
    std::size_t numInserted = 0;
    bool bMayWait, bDegenerate = false; // a segment whose ends are equal is told of
    std::string stage;
};

} // namespace

const std::vector<SegmentFamily>& segmentFamilies() {
    static const std::vector<SegmentFamily> vFamilies{{"rounded", make<drawRoundedCrossings>},
                                                      {"near", make<drawNearSegments>},
                                                      {"hanging", make<drawHangingEdges, true>},
                                                      {"collinear", make<drawCollinearOverlaps>},
                                                      {"through", make<drawThroughVertices, true>},
                                                      {"polygons", make<drawSharedPolygons, true>},
                                                      {"lastbits", make<drawLastBits>},
                                                      {"random", make<drawRandomCrossings, true>},
                                                      {"stars", make<drawStars>},
                                                      {"scaled", makeScaled},
                                                      {"mixed", makeMixed}};
    return vFamilies;
}

SegmentSet makeCrossingSegments(std::size_t n, double length, std::uint64_t seed) {
    Maker m(seed);
    while (m.vAll.size() < n) {
        const Point2 a = m.inBox();
        m.segment(a, m.at(a.x() + m.between(-length, length), a.y() + m.between(-length, length)));
    }
    return m.finish();
}

SegmentSet makeLatticeSegments(std::size_t n, int side, std::uint64_t seed) {
    Maker m(seed);
    while (m.vAll.size() < n)
        m.segment(m.onLattice(side), m.onLattice(side));
    return m.finish();
}

std::string insertAndCheck(const SegmentSet& set, unsigned variant) {
    return Run(set, variant).findFault();
}

} // namespace testing_support
} // namespace QUOR_KELM25D
