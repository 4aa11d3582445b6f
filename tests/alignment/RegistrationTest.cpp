#include "alignment/Registration.h"
#include "base/ParallelRows.h"

#include "tests/alignment/MovedScene.h"

#include <cmath>
#include <cstring>

constexpr CBxSize<int> kFrame = {720, 520};

static Registration Register(const TestPicture& stays, const TestPicture& moving)
{
    return RegisterFrame(LookAt(stays), LookAt(moving));
}

TEST(Registration, FindsWhatAHandDoesAcrossExposures)
{
    struct Case
    {
        Motion motion;
        double evStays, evMoving;
        int components, bits;
    };
    const Case cases[] = {
        {{0, 1, 9.3, -6.7, 0}, 0, 2, 3, 8},         {{0.7, 1.004, -14.4, 10.4, 3}, -1, 2, 3, 8},
        {{-0.5, 0.997, 3.2, 2.6, -3}, 1, -3, 3, 8}, {{2, 1.01, 30, -25, 0}, 0, 2, 3, 8},
        {{-1.2, 1, -43, 31, 2}, 1, -1, 1, 8},       {{0.4, 1, 5.5, 5.5, 1}, 0, -4, 3, 16},
        {{0, 1, 0.6, 0.4, 0}, 0, 2, 1, 16},
    };
    uint32_t seed = 1;
    for (const Case& row : cases)
    {
        SCOPED_TRACE(testing::Message() << "case " << seed);
        const SceneLight scene = BlockScene(kFrame, seed++);
        const Homography meant = MapOfMotion(row.motion, kFrame);
        const Registration found =
            Register(Photograph(scene, kFrame, {}, row.evStays, 5, row.components, row.bits),
                     Photograph(scene, kFrame, meant, row.evMoving, 6, row.components, row.bits));
        EXPECT_EQ(found.verdict, FrameVerdict::Registered);
        EXPECT_LT(MapError(found.map, meant, kFrame), 0.25);
        EXPECT_GT(found.correlationAfter, found.correlationBefore);
    }
}

TEST(Registration, LeavesAFrameAloneThatItCannotUnderstand)
{
    const SceneLight scene = BlockScene(kFrame, 1), other = BlockScene(kFrame, 2);
    const SceneLight nothing = [](double, double) { return 0.5; };
    const TestPicture stays = Photograph(scene, kFrame, {}, 0, 1);
    struct Case
    {
        const char* what;
        TestPicture moving;
    };
    Case cases[] = {
        {"another scene", Photograph(other, kFrame, {}, 0, 2)},
        {"no texture", Photograph(nothing, kFrame, {}, 0, 2)},
        {"all white", Photograph(scene, kFrame, {}, 12, 2)},
        {"too far", Photograph(scene, kFrame, Translation(200, 0), 0, 2)},
        {"sheared", Photograph(scene, kFrame, {{1, 0.09, -20, 0, 1, 0, 0, 0, 1}}, 0, 2)},
    };
    for (const Case& row : cases)
    {
        const Registration found = Register(stays, row.moving);
        EXPECT_NE(found.verdict, FrameVerdict::Registered) << row.what;
        EXPECT_NE(found.verdict, FrameVerdict::Still) << row.what;
        EXPECT_EQ(MapError(found.map, {}, kFrame), 0) << row.what;
    }
}

TEST(Registration, OfAStandingCameraIsStill)
{
    const SceneLight scene = BlockScene(kFrame, 3);
    for (const double ev : {-3.0, 0.0, 2.0})
        EXPECT_EQ(
            Register(Photograph(scene, kFrame, {}, 0, 1), Photograph(scene, kFrame, {}, ev, 2))
                .verdict,
            FrameVerdict::Still)
            << ev;
}

// Rows of windows look alike at every period; what is not a window decides.
TEST(Registration, DoesNotLockOntoTheNextWindow)
{
    constexpr double kPeriod = 40;
    const CBxSize<int> frame = {1600, 900};
    const SceneLight blocks = BlockScene(frame, 4);
    const SceneLight facade = [&](double x, double y)
    {
        const bool wall = y > 250 && y < 750;
        const double u = x - kPeriod * std::floor(x / kPeriod),
                     v = y - kPeriod * std::floor(y / kPeriod);
        const double window =
            std::clamp((u - 8) / 2, 0.0, 1.0) * std::clamp((32 - u) / 2, 0.0, 1.0) *
            std::clamp((v - 8) / 2, 0.0, 1.0) * std::clamp((34 - v) / 2, 0.0, 1.0);
        return wall ? 0.3 + 1.2 * window : blocks(x, y);
    };
    const Homography meant = Translation(6 * kPeriod / 2, 3); // 120: three periods
    const Registration found =
        Register(Photograph(facade, frame, {}, 0, 1), Photograph(facade, frame, meant, 2, 2));
    EXPECT_EQ(found.verdict, FrameVerdict::Registered);
    EXPECT_LT(MapError(found.map, meant, frame), 0.5);
}

TEST(Registration, FollowsTheSceneAndNotWhatMovesInIt)
{
    const SceneLight scene = BlockScene(kFrame, 5), crowd = BlockScene(kFrame, 6);
    const Homography meant = MapOfMotion({0.3, 1, 4.5, -3.5, 0}, kFrame);
    const auto with = [&](double moved)
    {
        return [&, moved](double x, double y)
        {
            const bool inCrowd = x > 150 && x < 560 && y > 250; // 29 % of the frame
            return inCrowd ? crowd(x - moved, y) : scene(x, y);
        };
    };
    const Registration found =
        Register(Photograph(with(0), kFrame, {}, 0, 1), Photograph(with(17), kFrame, meant, 2, 2));
    EXPECT_EQ(found.verdict, FrameVerdict::Registered);
    EXPECT_LT(MapError(found.map, meant, kFrame), 0.4);
}

// Far apart nothing is seen in both; neighbours lead from the one to the other, and one
// that shows something else is passed over.
TEST(SeriesRegistration, GoesFromNeighbourToNeighbour)
{
    const SceneLight scene = BlockScene(kFrame, 7), other = BlockScene(kFrame, 8);
    const double ev[] = {1, -5, 3, -2, 2, 0, -6.5};
    std::vector<Homography> meant;
    std::vector<FrameLook> frames;
    for (int i = 0; i < 7; ++i)
    {
        meant.push_back(MapOfMotion({0.1 * i - 0.3, 1, 2.0 * i, -1.5 * i + 3, 0}, kFrame));
        frames.push_back(LookAt(Photograph(scene, kFrame, meant.back(), ev[i], uint32_t(i))));
    }
    frames.push_back(LookAt(Photograph(other, kFrame, {}, -3, 9)));
    const SeriesRegistration series = RegisterSeries(frames);
    ASSERT_LT(series.stays, 7);
    const Homography toScene = Inverse(meant[size_t(series.stays)]);
    for (size_t i = 0; i < 7; ++i)
    {
        if (int(i) == series.stays)
            continue;
        EXPECT_EQ(series.frames[i].verdict, FrameVerdict::Registered) << i;
        EXPECT_LT(MapError(series.frames[i].map, Compose(meant[i], toScene), kFrame), 0.5) << i;
    }
    EXPECT_NE(series.frames[7].verdict, FrameVerdict::Registered);
}

// Steps of 70 pixels do not add up to 140, which is more than 15 % of the diagonal.
TEST(SeriesRegistration, GoesNoFartherInManySteps)
{
    const SceneLight scene = BlockScene(kFrame, 11);
    const double ev[] = {-1, 0.5, 2};
    std::vector<FrameLook> frames;
    for (int i = 0; i < 3; ++i)
        frames.push_back(
            LookAt(Photograph(scene, kFrame, Translation(55.0 * i, 43.0 * i), ev[i], 1)));
    const SeriesRegistration series = RegisterSeries(frames);
    ASSERT_EQ(series.stays, 0);
    EXPECT_EQ(series.frames[1].verdict, FrameVerdict::Registered);
    EXPECT_EQ(series.frames[2].verdict, FrameVerdict::TooFar);
    EXPECT_EQ(MapError(series.frames[2].map, {}, kFrame), 0);
}

// A camera on a tripod gives way by half a pixel; one that is held does not stay within that.
TEST(SeriesRegistration, LeavesATripodsSeriesAsItIs)
{
    const SceneLight scene = BlockScene(kFrame, 10);
    const auto verdictsOf = [&](double last)
    {
        std::vector<FrameLook> frames;
        for (const CBxPoint<double>& shift :
             {CBxPoint<double>{0.45, -0.3}, CBxPoint<double>{0, 0}, CBxPoint<double>{-0.35, last}})
            frames.push_back(LookAt(Photograph(scene, kFrame, Translation(shift.x, shift.y),
                                               2.5 * double(frames.size()) - 3.5, 1)));
        std::vector<FrameVerdict> verdicts;
        for (const Registration& frame : RegisterSeries(frames).frames)
            verdicts.push_back(frame.verdict);
        return verdicts;
    };
    const FrameVerdict still = FrameVerdict::Still, moved = FrameVerdict::Registered;
    EXPECT_EQ(verdictsOf(0.4), (std::vector<FrameVerdict>{still, still, still}));
    EXPECT_EQ(verdictsOf(1.1), (std::vector<FrameVerdict>{moved, still, moved}))
        << "where one is resampled all are that moved";
}

// The same bits on every processor, system and number of threads.
TEST(Registration, HasTheSameBitsEverywhere)
{
    const SceneLight scene = BlockScene(kFrame, 9);
    const TestPicture stays = Photograph(scene, kFrame, {}, 0, 1);
    const TestPicture moving = Photograph(
        scene, kFrame, {{0.9995, -0.0105, 8.5, 0.0105, 0.9995, -5.25, 2e-6, -1e-6, 1}}, 2, 2);
    for (const int threads : {1, 2, 3})
    {
        VcLimitThreads(threads);
        const Homography map = Register(stays, moving).map;
        uint64_t hash = 14695981039346656037ull;
        for (const double value : map.m)
        {
            uint64_t bits;
            std::memcpy(&bits, &value, sizeof bits);
            hash = (hash ^ bits) * 1099511628211ull;
        }
        EXPECT_EQ(hash, 0x07e9b9e7b01d4500ull)
            << std::hex << hash << " with " << threads << " threads";
    }
    VcLimitThreads(0);
}
