// Made data: what a seed gives, and the shapes. The rings that polygons are sorted to have their own tests.
#include "random.h"
#include "testing.h"

namespace {

const double eps = std::numeric_limits<double>::epsilon();

// What generator k, of those that take a seed, makes of a range, and the custom indices.
std::vector<double> make(int k, double min, double max, unsigned seed) {
    std::vector<double> v(7, -1.0);
    std::vector<Point2> vPoints(k < 3 ? 70 : 0);
    std::vector<Segment2> vSegments;
    if (k == 0) generateRandomNumbers(50, min, max, v, seed);
    if (k == 1) generateRandomPoints(50, min, max, vPoints, seed);
    if (k == 2) generateRandomPoints3D(50, min, max, vPoints, seed);
    if (k == 3) generateRandomSegments(50, min, max, 3.0, vSegments, seed);
    if (k == 4) generateRandomPolygon(20, min, max, vSegments, seed);
    if (k == 5) generateRandomSurfacePoints(5, 6, 7, min, min, min, max, max, max, vPoints, seed);
    for (const Segment2& s : vSegments)
        vPoints.insert(vPoints.end(), {s.getSrc(), s.getTrg()});
    for (const Point2& p : vPoints)
        v.insert(v.end(), {p.x(), p.y(), p.z(), double(p.getCustomIndex())});
    return v;
}

} // namespace

TEST(Generators, SeedRepeatsEverywhereAndZeroDoesNot) {
    seedRandom(4294967295U);
    EXPECT_TRUE(nextRandom() == 14808 && nextRandom() == 12432); // of the published sequence
    CoutCapture capture;                                         // one of them talks
    for (int k = 0; k < 6; ++k) {
        std::set<std::vector<double>> sMade;
        for (const unsigned seed : {1U, 1U, 2U, 2U, 4294967295U, 4294967295U})
            sMade.insert(make(k, -50, 100, seed));
        EXPECT_EQ(sMade.size(), 3U) << k;
        for (int i = 0; i < 300; ++i) // most of them within one second
            sMade.insert(make(k, -50, 100, 0));
        // A polygon that fails at first goes on with seed 1, which about one in five does.
        EXPECT_GE(sMade.size(), k == 4 ? 150U : 303U) << k;
    }
}

TEST(Generators, NumbersBecomeFirstAllXThenAllYThenAllZ) {
    std::vector<double> r;
    generateRandomNumbers(30, -2.0, 5.0, r, 9);
    std::vector<Point2> v(20), v3D(20);
    generateRandomPoints(15, -2.0, 5.0, v, 9);
    CoutCapture capture;
    generateRandomPoints3D(10, -2.0, 5.0, v3D, 9);
    EXPECT_TRUE(capture.printed("after generate\ni=0, siz=30\ni=1, siz=30\n"));
    ASSERT_TRUE(v.size() == 15 && v3D.size() == 10);
    EXPECT_TRUE(v[7].samePoint({r[7], r[22], 0.0}) && v3D[7].samePoint({r[7], r[17], r[27]}));
}

TEST(RandomPolygon, IsASimpleRingOfTheWantedSize) {
    // From 1000 to 1030 the limits in y are a strip of the square, and attempts for many segments fail.
    for (const auto& [min, max] : {std::pair(0., 1.), {-3., -1.}, {1000., 1030.}, {-1e-300, 1e-300}})
        for (const unsigned num : {3U, 4U, 30U, 120U}) {
            SCOPED_TRACE(::testing::Message() << min << ' ' << max << ' ' << num);
            std::vector<Segment2> v;
            generateRandomPolygon(num, min, max, v, 7);
            ASSERT_EQ(v.size(), num);
            std::set<Point2> sPlaces;
            int numOutside = 0;
            for (unsigned i = 0; i < num; ++i) {
                const Point2 p = v[i].getSrc();
                EXPECT_EQ(v[i].getTrg(), v[(i + 1) % num].getSrc());
                sPlaces.insert(p);
                numOutside += p.x() < min || p.x() > max || p.y() < 0.98 * min || p.y() > 0.98 * max;
            }
            EXPECT_TRUE(sPlaces.size() == num && isSimplePolygon(v));
            EXPECT_LE(numOutside, num == 3 ? 3 : 1); // the first triangle shares an edge with the next
        }
    std::vector<Segment2> v(1);
    generateRandomPolygon(400, 1000, 1030, v, 7);
    EXPECT_EQ(v.size(), 400U); // cleared by a retry
}

TEST(RandomSegments, HaveThreeLengthsAndFillUp) {
    for (const double size : {1e-200, 1.0, 1e200}) {
        std::vector<Segment2> v;
        generateRandomSegments(1000, -size, size, size / 8, v, 3);
        generateRandomSegments(1000, -size, size, size / 8, v, 4); // there are enough
        ASSERT_EQ(v.size(), 1000U);
        std::map<double, int> mCount;
        for (const Segment2& s : v) {
            const Point2 a = s.getSrc(), b = s.getTrg();
            const double length = std::hypot(b.x() - a.x(), b.y() - a.y()) / (size / 8);
            for (const double part : {1.0, 0.8, 0.5}) // ends are rounded at up to twice the range, 16 lengths
                mCount[part] += std::fabs(length - part) < 32 * eps;
        }
        EXPECT_EQ(mCount[1.0] + mCount[0.8] + mCount[0.5], 1000);
        for (const auto& [part, count] : mCount) // a third each, within five standard deviations
            EXPECT_NEAR(count, 333, 75) << part;
    }
}

TEST(RandomSurface, ReachesItsLimitsExactlyAndTakesEarlierPointsAlong) {
    const double xmin = 0.1, ymin = -7.3, zmin = -7.3, xmax = 0.7, ymax = 1e3, zmax = 0.3;
    std::vector<double> x, y; // of the first bump, which goes up, and the second, which goes down
    generateRandomNumbers(2, xmin, xmax, x, 11);
    generateRandomNumbers(2, ymin, ymax, y, 12);
    const auto isNearFirst = [&](const Point2& p) {
        return std::hypot(p.x() - x[0], p.y() - y[0]) < std::hypot(p.x() - x[1], p.y() - y[1]);
    };
    for (const unsigned numY : {2U, 70U})
        for (const unsigned numCenters : {1U, 2U, 25U}) {
            std::vector<Point2> v(1, {0.5, 3.0, 99.0});
            generateRandomSurfacePoints(3, numY, numCenters, xmin, ymin, zmin, xmax, ymax, zmax, v, 11);
            ASSERT_EQ(v.size(), 1 + 3 * numY);
            EXPECT_TRUE(v[1] == Point2(xmin, ymin, 0) && v[1 + 2 * numY].x() == xmax);
            EXPECT_TRUE(v[numY].y() == ymax && v.back() == Point2(xmax, ymax, 0));
            const auto isLower = [](const Point2& a, const Point2& b) { return a.z() < b.z(); };
            const auto extremes = std::minmax_element(v.begin(), v.end(), isLower);
            EXPECT_TRUE(extremes.first->z() == zmin && extremes.second->z() == zmax);
            EXPECT_TRUE(numCenters != 2 || (isNearFirst(*extremes.second) && !isNearFirst(*extremes.first)));
        }
}

TEST(Curves, CirclesAndSinesGoWhereTheyShould) {
    std::vector<Point2> vCircle;
    generateCircle(8, 1, 2, 3, 4, 5, vCircle);
    ASSERT_EQ(vCircle.size(), 8U);
    for (int i = 0; i < 8; ++i) { // with a gap wider by 5.3e-6 radians at the end
        const double t = std::atan2((vCircle[i].y() - 2) / 5, (vCircle[i].x() - 1) / 4);
        EXPECT_NEAR(std::remainder(t - i * 6.28318 / 8, 2 * M_PI), 0.0, 32 * eps) << i; // a few roundings
    }
    for (const auto& [yFactor, bSwapXY, num] : {std::tuple(2., false, 1), {2., true, 40}, {0., false, 40}}) {
        std::vector<Segment2> v;
        generateSineSegments(num, 5, 10, 0, 3, yFactor, bSwapXY, v);
        ASSERT_EQ(v.size(), unsigned(num));
        for (int i = 0; i < num; ++i) {
            const Point2 p = v[i].getTrg();
            EXPECT_TRUE(i + 1 == num || p == v[i + 1].getSrc());
            const double x = bSwapXY ? p.y() : p.x(), y = bSwapXY ? p.x() : p.y(), t = (x - 10) / 3;
            EXPECT_NEAR(t, 10 * M_PI * (i + 1) / num, 256 * eps); // a few roundings below 128, divided by 3
            EXPECT_NEAR(y, yFactor == 0 ? std::fabs(std::sin(t)) : 2 * std::sin(t), 512 * eps);
            EXPECT_TRUE((i + 1) * 10 % num != 0 || y == 0.0); // whole half periods
        }
    }
}

TEST(Shear, MovesByTheOldValuesAndClearsTheIndex) {
    std::vector<Point2> v(1, {4.0, 8.0, 7.0});
    v[0].setCustomIndex(5);
    shear(v, 0.5, -3.0);
    EXPECT_TRUE(v[0].samePoint({8.0, -4.0, 7.0}) && v[0].getCustomIndex() == -1);
}
