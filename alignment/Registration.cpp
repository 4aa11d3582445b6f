#include "alignment/Registration.h"

#include "alignment/RobustFit.h"
#include "alignment/TileMatch.h"
#include "alignment/WholeShift.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

// Photographs are soft at the pixel: nothing is matched on levels above kFinestSide, and tiles are
// chosen on levels of at most kChoiceSide and carried to finer ones.
constexpr int kFinestSide = 2600, kChoiceSide = 1100, kCoarsestSide = 48;
constexpr double kLongestShift = 0.08;    // of the longer side, found on the coarsest level
constexpr double kLeastCorrelation = 0.5; // of a tile that has been found
constexpr float kBlockedLuma = 12, kBlownLuma = 243;
constexpr double kStillPixels = 0.3;
constexpr double kTripodPixels = 0.7;      // see StandOnATripod
constexpr double kFarthestCorner = 0.15;   // of the diagonal
constexpr double kMostStretch = 0.04;      // of one direction against the other
constexpr double kMostTilt = 0.06;         // change of scale from edge to edge
constexpr int kLeastPlaces = 24;           // below, chance agrees as well
constexpr double kLeastPlacesShare = 0.25; // of the tiles that were found at all

static std::vector<PlacePair> PairsOf(const std::vector<TileMatch>& matches)
{
    std::vector<PlacePair> pairs;
    for (const TileMatch& match : matches)
    {
        if (!match.found || !(match.correlation >= kLeastCorrelation))
            continue;
        const double above = double(match.correlation) - 0.4;
        pairs.push_back({match.from, match.to, above * above});
    }
    return pairs;
}

// What goes from one level to the next finer one.
struct Matching
{
    Homography map;
    std::vector<AlignmentTile> tiles;
    int places = 0, found = 0; // of the last level that had something to say
    double residual = 0;
};

static int TileSideOn(const LumaPlane& plane)
{
    return std::min(plane.width, plane.height) >= 96 ? kTileSide : kSmallTileSide;
}

static void ChooseTiles(Matching* matching, const LumaPlane& plane, bool coarsest)
{
    if (coarsest || std::max(plane.width, plane.height) <= kChoiceSide)
    {
        matching->tiles = PickTiles(plane, TileSideOn(plane));
        return;
    }
    const int margin = TileSideOn(plane);
    for (AlignmentTile& tile : matching->tiles)
        tile = {std::clamp(2 * tile.x, margin, plane.width - margin),
                std::clamp(2 * tile.y, margin, plane.height - margin)};
}

// One level, whose number counts from the finest: 0. Fewer tiles know less, so coarse levels search
// wider and allow the map less.
static void MatchLevel(Matching* matching, const LumaPlane& stays, const LumaPlane& moving,
                       int level, int levels)
{
    const int fromCoarsest = levels - 1 - level;
    const int passes = level == 0 || fromCoarsest == 0 ? 2 : 1;
    const CBxSize<int> size = {stays.width, stays.height};
    for (int pass = 0; pass < passes; ++pass)
    {
        const int reach = fromCoarsest == 0 && pass == 0 ? 4 : fromCoarsest <= 1 ? 3 : pass ? 1 : 2;
        const std::vector<PlacePair> pairs = PairsOf(
            MatchTiles(stays, moving, matching->tiles, TileSideOn(stays), matching->map, reach));
        const int found = int(pairs.size());
        if (found < (fromCoarsest > 1 ? 12 : 4))
            continue; // this level has nothing to say
        const MotionModel model = fromCoarsest == 0                 ? MotionModel::Similarity
                                  : fromCoarsest >= 2 || level == 0 ? MotionModel::Projective
                                                                    : MotionModel::Affine;
        const double tolerance = level > 0 ? 1.0 : 0.6;
        const RobustMap fit = FitRobustly(pairs, model, size, matching->map, tolerance);
        if (fromCoarsest > 1 && (fit.agreeing < 8 || fit.agreeing < 0.3 * found))
            continue;
        matching->map = fit.map;
        matching->places = fit.agreeing;
        matching->found = found;
        matching->residual = fit.residual;
    }
}

static double MeanOf(const std::vector<float>& a, const std::vector<float>& other)
{
    double sum = 0;
    int count = 0;
    for (size_t i = 0; i < a.size(); ++i)
        if (a[i] > kNoCorrelation && other[i] > kNoCorrelation)
            sum += double(a[i]), ++count;
    return count ? sum / count : 0;
}

// A hand turns, shifts and tips a camera a little: the map is nearly a similarity.
static bool CouldBeACamera(const Homography& map, CBxSize<int> frame)
{
    const double longer = std::max(frame.cx, frame.cy);
    const double tilt = (std::abs(map.m[6]) + std::abs(map.m[7])) * longer;
    const double a = map.m[0], b = map.m[1], c = map.m[3], d = map.m[4];
    // Larger and smaller stretch by the linear part, and the turn's determinant.
    const double mean = (a * a + b * b + c * c + d * d) / 2, determinant = a * d - b * c;
    const double apart = std::sqrt(std::max(mean * mean - determinant * determinant, 0.0));
    return determinant > 0.7 && determinant < 1.4 && tilt < kMostTilt &&
           std::sqrt((mean + apart) / std::max(mean - apart, 1e-9)) < 1 + kMostStretch;
}

// The map can be believed.
static bool IsUnderstood(FrameVerdict verdict)
{
    return verdict == FrameVerdict::Registered || verdict == FrameVerdict::Still;
}

static bool IsTooFar(const Homography& map, CBxSize<int> frame)
{
    const double diagonal = std::sqrt(double(frame.cx) * frame.cx + double(frame.cy) * frame.cy);
    return !(LargestCornerMotion(map, frame) <= kFarthestCorner * diagonal);
}

static FrameVerdict Judge(const Registration& result, const Matching& matching, CBxSize<int> frame)
{
    if (matching.places < kLeastPlaces || matching.places < kLeastPlacesShare * matching.found)
        return FrameVerdict::TooFewPlaces;
    if (IsTooFar(matching.map, frame))
        return FrameVerdict::TooFar;
    if (!CouldBeACamera(matching.map, frame))
        return FrameVerdict::NotACamera;
    if (LargestCornerMotion(matching.map, frame) < kStillPixels)
        return FrameVerdict::Still;
    return result.correlationAfter > result.correlationBefore ? FrameVerdict::Registered
                                                              : FrameVerdict::NoImprovement;
}

FrameLook LookAt(const SBxPicBuf& picture)
{
    FrameLook look;
    look.size = {picture.width, picture.height};
    look.pyramid = BuildLumaPyramid(picture, kFinestSide, kCoarsestSide);
    const std::vector<float>& coarse = look.pyramid.levels.back().samples;
    for (const float luma : coarse)
    {
        look.brightness += double(luma);
        look.wellExposed += luma > kBlockedLuma && luma < kBlownLuma;
    }
    look.brightness /= double(coarse.size());
    look.wellExposed /= double(coarse.size());
    return look;
}

static Matching MatchPyramids(const LumaPyramid& a, const LumaPyramid& b)
{
    const int levels = int(a.levels.size());
    const LumaPlane& coarsest = a.levels.back();
    const int reach = int(std::ceil(kLongestShift * std::max(coarsest.width, coarsest.height)));
    const CBxPoint<int> shift = WholeShift(coarsest, b.levels.back(), reach);
    Matching matching;
    matching.map = Translation(shift.x, shift.y);
    for (int level = levels - 1; level >= 0; --level)
    {
        const size_t i = size_t(level);
        if (level < levels - 1)
            matching.map = OnFinerGrid(matching.map, 2);
        ChooseTiles(&matching, a.levels[i], level == levels - 1);
        MatchLevel(&matching, a.levels[i], b.levels[i], level, levels);
    }
    return matching;
}

Registration RegisterFrame(const FrameLook& stays, const FrameLook& moving)
{
    const LumaPlane& a = stays.pyramid.levels[0];
    const LumaPlane& b = moving.pyramid.levels[0];
    Matching matching = MatchPyramids(stays.pyramid, moving.pyramid);
    Registration result;
    const auto with = [&](const Homography& map)
    { return TileCorrelations(a, b, matching.tiles, TileSideOn(a), map); };
    const std::vector<float> before = with({}), after = with(matching.map);
    result.correlationBefore = MeanOf(before, after);
    result.correlationAfter = MeanOf(after, before);
    result.places = matching.places;
    result.residual = matching.residual;
    matching.map = OnFinerGrid(matching.map, double(1 << stays.pyramid.halvings));
    result.verdict = Judge(result, matching, stays.size);
    if (IsUnderstood(result.verdict))
        result.map = matching.map;
    return result;
}

// Frames by brightness, darkest first; of equal ones the earlier first.
static std::vector<size_t> ByBrightness(const std::vector<FrameLook>& frames)
{
    std::vector<size_t> order(frames.size());
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t a, size_t b)
                     { return frames[a].brightness < frames[b].brightness; });
    return order;
}

// One after the other away from the frame that stays.
static void RegisterChain(SeriesRegistration* series, const std::vector<FrameLook>& frames,
                          const std::vector<size_t>& chain)
{
    size_t link = size_t(series->stays);
    for (const size_t frame : chain)
    {
        Registration* result = &series->frames[frame];
        *result = RegisterFrame(frames[link], frames[frame]);
        if (!IsUnderstood(result->verdict))
            continue;
        const Homography map = Compose(result->map, series->frames[link].map);
        if (IsTooFar(map, frames[frame].size))
        {
            *result = {};
            result->verdict = FrameVerdict::TooFar;
            continue;
        }
        result->map = map;
        result->verdict = LargestCornerMotion(result->map, frames[frame].size) < kStillPixels
                              ? FrameVerdict::Still
                              : FrameVerdict::Registered;
        link = frame;
    }
}

// Resampling softens a frame as much as a blend is softened by frames that lie half a pixel apart,
// and cameras that were stood somewhere still give way by that much from frame to frame. Measured
// on photographs that were shifted by known amounts: contrast of neighbouring pixels is kept better
// as they lie up to 0.55 pixels, and better by resampling from 0.75 pixels on, by a twentieth
// there and by a quarter at 1.25.
static void StandOnATripod(SeriesRegistration* series, const std::vector<FrameLook>& frames)
{
    for (size_t i = 0; i < frames.size(); ++i)
        if (MeanMotion(series->frames[i].map, frames[i].size) > kTripodPixels)
            return;
    for (Registration& frame : series->frames)
        if (frame.verdict == FrameVerdict::Registered)
            frame.verdict = FrameVerdict::Still;
}

SeriesRegistration RegisterSeries(const std::vector<FrameLook>& frames)
{
    SeriesRegistration series;
    series.frames.resize(frames.size());
    if (frames.empty())
        return series;
    const auto best = std::max_element(frames.begin(), frames.end(),
                                       [](const FrameLook& a, const FrameLook& b)
                                       { return a.wellExposed < b.wellExposed; });
    series.stays = int(best - frames.begin());
    series.frames[size_t(series.stays)].verdict = FrameVerdict::Still;
    const std::vector<size_t> order = ByBrightness(frames);
    const auto middle = std::find(order.begin(), order.end(), size_t(series.stays));
    RegisterChain(&series, frames, {middle + 1, order.end()});
    RegisterChain(&series, frames, {std::make_reverse_iterator(middle), order.rend()});
    StandOnATripod(&series, frames);
    return series;
}
