// The generators of the segment sets and the run through them.
// Coordinates are chosen so that crossings round badly, meet vertices or lie over one another.

#include "segmentSets.h"

#include "CoutCapture.h"
#include "MeshChecker.h"

#include <kelm25d/KelmException.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <utility>

namespace QUOR_KELM25D {
namespace testing_support {

namespace {

/// v moved by some units in the last place.
double nudge(double v, int units) {
    const double target = units < 0 ? -HUGE_VAL : HUGE_VAL;
    for (int i = std::abs(units); i > 0; --i) {
        v = std::nextafter(v, target);
    }
    return v;
}

/// Draws numbers and collects a set. Numbers are the same with every standard library.
class Maker {
public:
    Maker(const char* name, std::uint64_t seed) : random(seed * 2654435761u + 1) {
        set.name = name;
        set.batches.emplace_back();
    }

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
    Point2 beside(const Segment2& s, double t, int maxUnits) {
        const Point2 a = s.getSrc(), b = s.getTrg();
        const double x = a.x() + (b.x() - a.x()) * t, y = a.y() + (b.y() - a.y()) * t;
        return at(nudge(x, integer(-maxUnits, maxUnits)), nudge(y, integer(-maxUnits, maxUnits)));
    }

    void point(const Point2& p) { set.points.push_back(p); }
    Segment2 segment(const Point2& a, const Point2& b) {
        set.batches.back().push_back(chance(0.5) ? Segment2(a, b) : Segment2(b, a));
        vAll.push_back(set.batches.back().back());
        return vAll.back();
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
        if (bMayConform && chance(0.15)) {
            set.strategy = chance(0.5) ? CIS_CONFORMING_SURFACE_HEIGHT : CIS_CONFORMING_LINEAR_HEIGHT;
        }
        if (set.batches.size() == 1) {
            const std::vector<Segment2> v = set.batches[0];
            std::vector<std::size_t> vCuts{0, v.size()};
            for (int i = integer(0, 3); i > 0; --i) {
                vCuts.push_back(random() % v.size());
            }
            std::sort(vCuts.begin(), vCuts.end());
            set.batches.clear();
            for (std::size_t i = 0; i + 1 < vCuts.size(); ++i) {
                const auto first = v.begin();
                if (vCuts[i] != vCuts[i + 1])
                    set.batches.emplace_back(first + vCuts[i], first + vCuts[i + 1]);
            }
        }
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
SegmentSet makeRoundedCrossings(std::uint64_t seed) {
    Maker m("rounded crossings", seed);
    const double x = m.between(-1, 2), y = m.chance(0.3) ? 0.5 : m.between(-100, 100);
    const double direction = m.between(0, 7), spread = std::ldexp(1.0, -m.integer(10, 48));
    const double length = std::ldexp(1.0, m.integer(-2, 10));
    for (int i = m.integer(3, 12); i > 0; --i) {
        const double angle = direction + spread * m.integer(-8, 8);
        const double dx = length * std::cos(angle), dy = length * std::sin(angle);
        const double before = m.between(0.1, 1), after = m.between(0.1, 1);
        m.segment(m.at(x - before * dx, y - before * dy), m.at(x + after * dx, y + after * dy));
    }
    for (int i = m.integer(3, 40); i > 0; --i) {
        const double t = length * std::ldexp(m.between(-1, 1), -m.integer(5, 55));
        m.point(m.at(nudge(x + t * std::cos(direction), m.integer(-4, 4)),
                     nudge(y + t * std::sin(direction), m.integer(-4, 4))));
    }
    for (int i = m.integer(0, 3); i > 0; --i) {
        m.segment(m.at(m.between(x - 1, x + 1), y - length), m.at(m.between(x - 1, x + 1), y + length));
    }
    return m.finish();
}

/// Vertices one to three units beside segments, some of them ends of others.
SegmentSet makeNearDuplicates(std::uint64_t seed) {
    Maker m("near duplicates", seed);
    for (int i = m.integer(3, 12); i > 0; --i) {
        m.segment(m.inBox(), m.inBox());
    }
    const std::vector<Segment2> vLong = m.vAll;
    for (int i = m.integer(5, 40); i > 0; --i) {
        const Point2 p = m.beside(m.pick(vLong), m.unit(), 3);
        const double choice = m.unit();
        if (choice < 0.7) {
            m.point(p);
        } else {
            m.segment(p, choice < 0.8 ? m.inBox() : m.beside(m.pick(vLong), m.unit(), 3));
        }
    }
    return m.finish();
}

/// Ends in the middle of other segments, parts of other segments, and the same again.
SegmentSet makeHangingEdges(std::uint64_t seed) {
    Maker m("hanging and overlapping edges", seed);
    for (int i = m.integer(3, 8); i > 0; --i) {
        const Point2 a = m.onLattice(64);
        m.segment(a, m.at(a.x() + 8 * m.integer(-8, 8), a.y() + 8 * m.integer(-8, 8)));
    }
    const std::vector<Segment2> vLong = m.vAll;
    const auto on = [&] { return m.beside(m.pick(vLong), 0.125 * m.integer(0, 8), 0); };
    for (int i = m.integer(5, 25); i > 0; --i) {
        const Segment2& base = m.pick(vLong);
        const double choice = m.unit();
        if (choice < 0.3) {
            m.segment(on(), m.onLattice(64));
        } else if (choice < 0.6) {
            m.segment(m.beside(base, 0.125 * m.integer(0, 8), 0), m.beside(base, 0.125 * m.integer(0, 8), 0));
        } else if (choice < 0.7) {
            m.segment(base.getSrc(), base.getTrg());
        } else if (choice < 0.9) {
            m.segment(on(), on());
        } else {
            m.point(on());
        }
    }
    return m.finish(true);
}

/// Intervals over one another on a few lines, exact ones or such as doubles only approximate.
SegmentSet makeCollinearOverlaps(std::uint64_t seed) {
    Maker m("collinear overlaps", seed);
    const bool bExact = m.chance(0.5);
    for (int line = m.integer(1, 4); line > 0; --line) {
        const double scale = bExact ? 1.0 : m.unit();
        const double x = scale * m.integer(-20, 20), y = scale * m.integer(-20, 20);
        const double dx = scale * m.integer(-7, 7), dy = scale * m.integer(-7, 7);
        const auto on = [&](int k) { return m.at(x + k * dx, y + k * dy); };
        for (int i = m.integer(2, 14); i > 0; --i) {
            m.segment(on(m.integer(-10, 10)), on(m.integer(-10, 10)));
        }
        for (int i = m.integer(0, 4); i > 0; --i) {
            m.point(on(m.integer(-10, 10)));
        }
    }
    return m.finish();
}

/// Segments that run exactly through many vertices, and cross one another there.
SegmentSet makeThroughVertices(std::uint64_t seed) {
    Maker m("through vertices", seed);
    const int side = m.integer(4, 14);
    const double dx = m.integer(-6, 6), dy = m.integer(1, 6), ex = m.integer(1, 6), ey = m.integer(-6, 6);
    const auto on = [&](int i, int j) { return m.at(i * dx + j * ex, i * dy + j * ey); };
    for (int i = 0; i < side; ++i) {
        for (int j = 0; j < side; ++j) {
            if (m.chance(0.7)) m.point(on(i, j));
        }
    }
    for (int k = m.integer(4, 16); k > 0; --k) {
        const int i = m.integer(0, side - 1);
        const double choice = m.unit();
        if (choice < 0.4) {
            m.segment(on(i, 0), on(i, side - 1));
        } else if (choice < 0.8) {
            m.segment(on(0, i), on(side - 1, i));
        } else {
            m.segment(on(0, i), on(i, 0));
        }
    }
    return m.finish(true);
}

/// Rings that have parts of their boundaries in common, in either direction, and cross one another.
SegmentSet makeSharedPolygons(std::uint64_t seed) {
    Maker m("polygons that share boundaries", seed);
    const int side = m.integer(2, 6);
    const double noise = m.chance(0.5) ? 0.0 : 0.4;
    std::vector<Point2> vGrid;
    for (int k = 0; k < (side + 1) * (side + 1); ++k) {
        vGrid.push_back(m.at(k / (side + 1) + noise * m.unit(), k % (side + 1) + noise * m.unit()));
    }
    const auto corner = [&](int i, int j) { return vGrid[static_cast<std::size_t>(i * (side + 1) + j)]; };
    for (int k = m.integer(2, 6); k > 0; --k) {
        int i0 = m.integer(0, side), i1 = m.integer(0, side), j0 = m.integer(0, side),
            j1 = m.integer(0, side);
        if (i0 == i1 || j0 == j1) continue;
        if (i0 > i1) std::swap(i0, i1);
        if (j0 > j1) std::swap(j0, j1);
        std::vector<Point2> v{corner(i0, j0), corner(i1, j0), corner(i1, j1), corner(i0, j1)};
        if (m.chance(0.7)) { // all vertices along the sides, not only the corners
            v.clear();
            for (int i = i0; i < i1; ++i)
                v.push_back(corner(i, j0));
            for (int j = j0; j < j1; ++j)
                v.push_back(corner(i1, j));
            for (int i = i1; i > i0; --i)
                v.push_back(corner(i, j1));
            for (int j = j1; j > j0; --j)
                v.push_back(corner(i0, j));
        }
        m.ring(v);
    }
    if (m.chance(0.3)) m.ring({m.onLattice(side), m.onLattice(side), m.onLattice(side), m.onLattice(side)});
    m.ring({corner(0, 0), corner(side, 0), corner(side, side)});
    return m.finish(true);
}

/// Ends that were computed to lie on other segments and miss them by the rounding.
SegmentSet makeRoundedJunctions(std::uint64_t seed) {
    Maker m("junctions within rounding", seed);
    const double scale = m.chance(0.5) ? 1.0 : std::ldexp(1.0, m.integer(-20, 30));
    const auto anywhere = [&] { return m.at(scale * m.unit(), scale * m.unit()); };
    for (int i = m.integer(2, 5); i > 0; --i) {
        m.segment(anywhere(), anywhere());
    }
    for (int i = m.integer(5, 35); i > 0; --i) {
        const Point2 a = m.beside(m.pick(m.vAll), m.unit(), 0);
        m.segment(a, m.chance(0.5) ? anywhere() : m.beside(m.pick(m.vAll), m.unit(), 0));
    }
    return m.finish();
}

/// Segments between doubles that are neighbours or nearly so, far from the origin.
SegmentSet makeLastBits(std::uint64_t seed) {
    Maker m("last bits of large coordinates", seed);
    const double offset = m.pick<double>({1e6, 1e9, 1e12, 1e15, 0x1p40, -0x1p40, 3e14});
    const double unit =
        std::ldexp(std::nextafter(std::fabs(offset), HUGE_VAL) - std::fabs(offset), m.integer(0, 3));
    const int side = m.integer(3, m.chance(0.5) ? 15 : 3000);
    const auto anywhere = [&] {
        const Point2 p = m.onLattice(side);
        return m.at(offset + p.x() * unit, offset + p.y() * unit);
    };
    for (int i = m.integer(5, 30); i > 0; --i) {
        m.segment(anywhere(), anywhere());
    }
    for (int i = m.integer(0, 30); i > 0; --i) {
        m.point(anywhere());
    }
    return m.finish();
}

SegmentSet makeSmallLattice(std::uint64_t seed) {
    Maker m("integer lattice", seed);
    const int side = m.integer(2, 11);
    for (int i = m.integer(5, 45); i > 0; --i) {
        m.segment(m.onLattice(side), m.onLattice(side));
    }
    for (int i = m.integer(0, 20); i > 0; --i) {
        m.point(m.onLattice(side));
    }
    return m.finish(true);
}

SegmentSet makeRandomCrossings(std::uint64_t seed) {
    Maker m("random crossings", seed);
    for (int i = m.integer(5, 40); i > 0; --i) {
        m.segment(m.inBox(), m.inBox());
    }
    for (int i = m.integer(0, 60); i > 0; --i) {
        m.point(m.inBox());
    }
    return m.finish(true);
}

/// Lines and rays through one place: exactly, or as well as doubles can.
SegmentSet makeStars(std::uint64_t seed) {
    Maker m("stars and fans", seed);
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
    return m.finish();
}

/// Ends at about 1e-6 from other segments or from where those cross, where crossings begin to snap.
SegmentSet makeSnapDistances(std::uint64_t seed) {
    Maker m("about the snapping distance", seed);
    const double unit = std::ldexp(1e-6, m.integer(-3, 3));
    for (int i = m.integer(2, 5); i > 0; --i) {
        m.segment(m.inBox(), m.inBox());
    }
    const auto near = [&](const Point2& p) {
        return m.at(p.x() + m.between(-unit, unit), p.y() + m.between(-unit, unit));
    };
    for (int i = m.integer(3, 25); i > 0; --i) {
        const Point2 p = m.beside(m.pick(m.vAll), m.unit(), 0);
        const Point2 q = m.chance(0.5) ? p : m.chance(0.5) ? m.pick(m.vAll).getSrc() : m.inBox();
        m.segment(near(p), m.chance(0.3) ? m.inBox() : near(q));
    }
    return m.finish();
}

std::vector<Segment2> transformed(const std::vector<Segment2>& v, double shiftX, double shiftY,
                                  double scale) {
    std::vector<Segment2> vOut;
    const auto moved = [&](const Point2& p) {
        return Point2((p.x() - shiftX) * scale, (p.y() - shiftY) * scale, p.z());
    };
    for (const Segment2& s : v) {
        vOut.emplace_back(moved(s.getSrc()), moved(s.getTrg()));
    }
    return vOut;
}

void transform(SegmentSet& set, double shiftX, double shiftY, double scale) {
    std::vector<Segment2> vPoints;
    for (const Point2& p : set.points) {
        vPoints.emplace_back(p, p);
    }
    set.points.clear();
    for (const Segment2& s : transformed(vPoints, shiftX, shiftY, scale)) {
        set.points.push_back(s.getSrc());
    }
    for (std::vector<Segment2>& batch : set.batches) {
        batch = transformed(batch, shiftX, shiftY, scale);
    }
}

constexpr SegmentFamily aBase[] = {
    {"rounded", makeRoundedCrossings},
    {"near", makeNearDuplicates},
    {"hanging", makeHangingEdges},
    {"collinear", makeCollinearOverlaps},
    {"through", makeThroughVertices},
    {"polygons", makeSharedPolygons},
    {"junctions", makeRoundedJunctions},
    {"lastbits", makeLastBits},
    {"lattice", makeSmallLattice},
    {"random", makeRandomCrossings},
    {"stars", makeStars},
    {"snap", makeSnapDistances},
};

SegmentSet makeBase(std::uint64_t seed) {
    return aBase[seed % std::size(aBase)].make(seed / std::size(aBase));
}

/// Other sets, smaller or larger by powers of ten.
SegmentSet makeScaled(std::uint64_t seed) {
    Maker m("scaled", seed);
    SegmentSet set = makeBase(m.random() >> 20);
    set.strategy = CIS_CONSTRAINED_DELAUNAY;
    if (set.name == "last bits of large coordinates") transform(set, 0, 0, 1e-15);
    const double scale = m.pick<double>({1e-9, 1e-150, 1e147, 1e-5, 1e-6, 1e-7, 1e9, 0x1p-30, 0x1p400});
    transform(set, 0, 0, scale);
    set.name += " times " + std::to_string(std::log10(scale));
    return set;
}

/// Two other sets in one box.
SegmentSet makeMixed(std::uint64_t seed) {
    Maker m("mixture", seed);
    SegmentSet mixed;
    mixed.name = "mixture of";
    for (int part = 0; part < 2; ++part) {
        SegmentSet set = makeBase(m.random() >> 20);
        Point2 low(HUGE_VAL, HUGE_VAL, 0), high(-HUGE_VAL, -HUGE_VAL, 0);
        for (const std::vector<Segment2>& batch : set.batches) {
            for (const Segment2& s : batch) {
                for (const Point2& p : {s.getSrc(), s.getTrg()}) {
                    low = Point2(std::min(low.x(), p.x()), std::min(low.y(), p.y()), 0);
                    high = Point2(std::max(high.x(), p.x()), std::max(high.y(), p.y()), 0);
                }
            }
        }
        const double size = std::max({high.x() - low.x(), high.y() - low.y(), 1e-12});
        transform(set, low.x(), low.y(), std::ldexp(1.0, -std::ilogb(size)));
        mixed.name += (part == 0 ? " " : " and ") + set.name;
        mixed.points.insert(mixed.points.end(), set.points.begin(), set.points.end());
        mixed.batches.insert(mixed.batches.end(), set.batches.begin(), set.batches.end());
    }
    std::shuffle(mixed.batches.begin(), mixed.batches.end(), m.random);
    return mixed;
}

bool isDegenerate(const Segment2& s) {
    return s.getSrc() == s.getTrg();
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
        std::string fault, printed;
        try {
            fault = run();
            printed = capture.take();
        } catch (const KelmException&) {
            return stage + ": a failed check: " + capture.take();
        }
        if (!fault.empty()) return stage + ": " + fault;
        if (printed.empty() || set.strategy != CIS_CONSTRAINED_DELAUNAY) return "";
        for (const std::vector<Segment2>& batch : set.batches) {
            if (std::any_of(batch.begin(), batch.end(), isDegenerate)) return ""; // tells so
        }
        return "printed: " + printed;
    }

private:
    std::string run() {
        insertPoints(pointsWhen == 0 ? set.points.size() : 0);
        std::string fault;
        for (std::size_t i = 0; i < set.batches.size(); ++i) {
            if (pointsWhen == 2) insertPoints(set.points.size() * (i + 1) / (set.batches.size() + 1));
            stage = "batch " + std::to_string(i);
            vGraphs.push_back(dt.createConstraint(set.batches[i], set.strategy, bOriented));
            bMayWait = bMayWait || !dt.is2D();
            fault = findNumberFault(i + 1);
            if (fault.empty()) fault = findMeshFault(dt);
            if (fault.empty()) fault = findConstraintFault(dt, set.batches[i], vGraphs.back(), bMayWait);
            if (!fault.empty()) return fault;
        }
        stage = "points after the segments";
        insertPoints(set.points.size());
        fault = checkAll();
        if (fault.empty()) fault = apply();
        if (fault.empty()) fault = findHeightFault();
        // Conforming segments that bend by a rounding may need more vertices than are worth the time.
        const bool bSplit = bAfterwards && set.strategy == CIS_CONSTRAINED_DELAUNAY && dt.is2D();
        if (fault.empty() && bSplit) fault = split();
        if (fault.empty() && bAfterwards && dt.is2D()) fault = remove();
        return fault;
    }

    void insertPoints(std::size_t last) {
        const auto first = set.points.begin() + static_cast<std::ptrdiff_t>(numInserted);
        const std::vector<Point2> v(first, set.points.begin() + static_cast<std::ptrdiff_t>(last));
        numInserted = last;
        if (bBulk) {
            dt.insert(v);
        } else {
            for (const Point2& p : v) {
                dt.insert(p);
            }
        }
    }

    std::string checkAll() {
        std::string fault = findMeshFault(dt);
        for (std::size_t i = 0; fault.empty() && i < set.batches.size(); ++i) {
            fault = findConstraintFault(dt, set.batches[i], vGraphs[i], bMayWait);
        }
        return fault;
    }

    std::string apply() {
        stage = "applyConstraintsAndZones";
        const unsigned numBefore = dt.numberOfPoints();
        const bool bNothingWaits = !bMayWait;
        CoutCapture capture;
        if (dt.is2D()) dt.applyConstraintsAndZones();
        // Conforming insertion gives up where doubles do not suffice.
        bMayWait = set.strategy != CIS_CONSTRAINED_DELAUNAY && !capture.take().empty();
        if (bNothingWaits && dt.numberOfPoints() != numBefore) return "new vertices though nothing waited";
        return checkAll();
    }

    /// Two segments cross once, or a few times where their pieces have been bent by the rounding. Many more
    /// vertices mean that segments which nearly coincide keep cutting one another.
    std::string findNumberFault(std::size_t numBatches) {
        if (set.strategy != CIS_CONSTRAINED_DELAUNAY) return "";
        std::size_t n = 0;
        for (std::size_t i = 0; i < numBatches; ++i) {
            n += set.batches[i].size();
        }
        if (dt.numberOfPoints() <= numInserted + 2 * n + n * n) return "";
        return std::to_string(dt.numberOfPoints()) + " vertices of " + std::to_string(n) + " segments";
    }

    /// Heights come from the given ones by interpolation.
    std::string findHeightFault() {
        double low = HUGE_VAL, high = -HUGE_VAL;
        const auto add = [&](const Point2& p) { low = std::min(low, p.z()), high = std::max(high, p.z()); };
        std::for_each(set.points.begin(), set.points.end(), add);
        for (const std::vector<Segment2>& batch : set.batches) {
            for (const Segment2& s : batch) {
                add(s.getSrc());
                add(s.getTrg());
            }
        }
        std::vector<Point2*> vVertices;
        dt.getVertexPointers(vVertices);
        const double tolerance = set.strategy == CIS_CONFORMING_SURFACE_HEIGHT ? 1e-6 : 0.0;
        for (const Point2* pVtx : vVertices) {
            if (!(pVtx->z() >= low - tolerance && pVtx->z() <= high + tolerance)) {
                return "height " + std::to_string(pVtx->z()) + " of a new vertex";
            }
        }
        return "";
    }

    std::string split() {
        stage = "insertAndSplit";
        std::vector<std::pair<std::pair<Point2, Point2>, ConstraintSegment2*>> vByPlace;
        std::vector<ConstraintSegment2*> vAlive;
        dt.getAliveConstraintSegments(vAlive);
        for (ConstraintSegment2* pSegment : vAlive) {
            vByPlace.push_back({std::minmax(*pSegment->getSrc(), *pSegment->getTrg()), pSegment});
        }
        std::sort(vByPlace.begin(), vByPlace.end()); // addresses differ from run to run
        for (std::size_t i = 0; i < vByPlace.size(); i += 1 + random() % 7) {
            ConstraintSegment2* pSegment = vByPlace[i].second;
            if (!pSegment->isAlive()) continue; // by a split before
            const Point2 &a = vByPlace[i].first.first, &b = vByPlace[i].first.second;
            const double t = 0.125 * static_cast<double>(random() % 8); // with 1, not exactly the other end
            const Point2 p(a.x() + (b.x() - a.x()) * t, a.y() + (b.y() - a.y()) * t, a.z());
            const Point2* pSplit = pSegment->insertAndSplit(p);
            if (pSplit == nullptr || *pSplit != p) return "another vertex than asked for";
            const bool bAtEnd = pSplit == pSegment->getSrc() || pSplit == pSegment->getTrg();
            if (pSegment->isAlive() != bAtEnd) return "no split";
        }
        return checkAll();
    }

    std::string remove() {
        stage = "remove";
        std::vector<Point2*> vVertices;
        dt.getVertexPointers(vVertices);
        std::sort(vVertices.begin(), vVertices.end(), [](Point2* a, Point2* b) { return *a < *b; });
        for (Point2* pVtx : vVertices) {
            if (!dt.is2D()) return "";
            const unsigned numBefore = dt.numberOfPoints();
            const bool bConstraint = dt.isConstraint(pVtx);
            if (random() % 4 == 0) continue;
            CoutCapture capture, captureErrors(std::cerr);
            dt.remove(pVtx);
            if (dt.numberOfPoints() != numBefore - (bConstraint ? 0 : 1)) return "a wrong number of vertices";
            if (bConstraint == capture.take().empty()) return "a warning too few or too many";
        }
        return checkAll();
    }

    const SegmentSet& set;
    const unsigned pointsWhen; // 0 before, 1 after, 2 between the segments
    const bool bBulk, bOriented, bAfterwards;
    std::mt19937_64 random;
    Kelm_2D dt;
    std::vector<ConstraintGraph2*> vGraphs;
    std::size_t numInserted = 0;
    bool bMayWait;
    std::string stage;
};

} // namespace

const std::vector<SegmentFamily>& segmentFamilies() {
    static const std::vector<SegmentFamily> vFamilies = [] {
        std::vector<SegmentFamily> v(std::begin(aBase), std::end(aBase));
        v.push_back({"scaled", makeScaled});
        v.push_back({"mixed", makeMixed});
        return v;
    }();
    return vFamilies;
}

SegmentSet makeCrossingSegments(std::size_t n, double length, std::uint64_t seed) {
    Maker m("crossing segments", seed);
    while (m.vAll.size() < n) {
        const Point2 a = m.inBox();
        m.segment(a, m.at(a.x() + m.between(-length, length), a.y() + m.between(-length, length)));
    }
    return m.finish();
}

SegmentSet makeLatticeSegments(std::size_t n, int side, std::uint64_t seed) {
    Maker m("lattice segments", seed);
    while (m.vAll.size() < n) {
        m.segment(m.onLattice(side), m.onLattice(side));
    }
    return m.finish();
}

std::string insertAndCheck(const SegmentSet& set, unsigned variant) {
    return Run(set, variant).findFault();
}

} // namespace testing_support
} // namespace QUOR_KELM25D
