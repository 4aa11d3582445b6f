#include "alignment/RobustFit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

constexpr int kCandidates = 60;
constexpr int kRounds = 8;
constexpr double kLeastSpan = 0.2;    // of the longer side, between the pairs of a candidate
constexpr double kMostScaling = 0.12; // of a candidate, and turn in radians
constexpr double kPerspectiveRidge = 1e-3;
constexpr double kLeastPivot = 1e-9;
constexpr size_t kMostUnknowns = 8;

static double Square(double value)
{
    return value * value;
}

static double DistanceSquared(const Homography& map, const PlacePair& pair)
{
    const CBxPoint<double> to = MapPoint(map, pair.from.x, pair.from.y);
    return Square(to.x - pair.to.x) + Square(to.y - pair.to.y);
}

// How well a map suits the pairs: each counts for less the farther it is off, and not at all from
// `reach` pixels on.
static double Consensus(const Homography& map, const std::vector<PlacePair>& pairs, double reach)
{
    double sum = 0;
    for (const PlacePair& pair : pairs)
        sum += pair.trust * std::max(0.0, 1 - DistanceSquared(map, pair) / Square(reach));
    return sum;
}

// A fixed sequence of numbers (Knuth's MMIX), the same everywhere.
struct NumberSequence
{
    uint64_t state = 7;

    size_t Below(size_t count)
    {
        state = state * 6364136223846793005ull + 1442695040888963407ull;
        return size_t((state >> 33) % count);
    }
};

// The similarity that leads both pairs from and to their places. False when they lie too close
// together, or it is none that a hand could make.
static bool SimilarityThrough(Homography* map, const PlacePair& a, const PlacePair& b, double span)
{
    const double dx = b.from.x - a.from.x, dy = b.from.y - a.from.y;
    const double length = dx * dx + dy * dy;
    if (length < Square(span))
        return false;
    const double ex = b.to.x - a.to.x, ey = b.to.y - a.to.y;
    const double real = (ex * dx + ey * dy) / length, imaginary = (ey * dx - ex * dy) / length;
    if (Square(real - 1) + Square(imaginary) > Square(kMostScaling))
        return false;
    *map = {{real, -imaginary, a.to.x - real * a.from.x + imaginary * a.from.y, imaginary, real,
             a.to.y - imaginary * a.from.x - real * a.from.y, 0, 0, 1}};
    return true;
}

static Homography BestStart(const std::vector<PlacePair>& pairs, CBxSize<int> frame,
                            const Homography& start, double reach)
{
    Homography best = start;
    double agreement = Consensus(start, pairs, reach);
    NumberSequence numbers;
    for (int i = 0; i < kCandidates && pairs.size() >= 4; ++i)
    {
        const PlacePair& a = pairs[numbers.Below(pairs.size())];
        const PlacePair& b = pairs[numbers.Below(pairs.size())];
        Homography candidate;
        if (!SimilarityThrough(&candidate, a, b, kLeastSpan * std::max(frame.cx, frame.cy)))
            continue;
        const double agrees = Consensus(candidate, pairs, reach);
        if (agrees > agreement)
        {
            agreement = agrees;
            best = candidate;
        }
    }
    return best;
}

// The normal equations of a least squares fit.
struct NormalEquations
{
    size_t unknowns;
    std::array<std::array<double, kMostUnknowns + 1>, kMostUnknowns> row = {};

    void Add(const std::array<double, kMostUnknowns>& factors, double value, double weight)
    {
        for (size_t i = 0; i < unknowns; ++i)
        {
            for (size_t j = 0; j < unknowns; ++j)
                row[i][j] += weight * factors[i] * factors[j];
            row[i][kMostUnknowns] += weight * factors[i] * value;
        }
    }

    // By elimination; the matrix is symmetric and, with its small ridge, definite.
    std::array<double, kMostUnknowns> Solve()
    {
        std::array<double, kMostUnknowns> solution = {};
        for (size_t i = 0; i < unknowns; ++i)
            row[i][i] += kLeastPivot;
        for (size_t i = 0; i < unknowns; ++i)
            for (size_t below = i + 1; below < unknowns; ++below)
            {
                const double times = row[below][i] / row[i][i];
                for (size_t j = i; j <= kMostUnknowns; ++j)
                    row[below][j] -= times * row[i][j];
            }
        for (size_t i = unknowns; i-- > 0;)
        {
            double sum = row[i][kMostUnknowns];
            for (size_t j = i + 1; j < unknowns; ++j)
                sum -= row[i][j] * solution[j];
            solution[i] = sum / row[i][i];
        }
        return solution;
    }
};

// Frames are fitted in coordinates of about -1 .. 1 around their middle.
struct FrameScale
{
    double centreX, centreY, half;

    explicit FrameScale(CBxSize<int> frame)
        : centreX(frame.cx / 2.0), centreY(frame.cy / 2.0), half(std::max(frame.cx, frame.cy) / 2.0)
    {
    }
    CBxPoint<double> Of(const CBxPoint<double>& place) const
    {
        return {(place.x - centreX) / half, (place.y - centreY) / half};
    }
    Homography BackToPixels(const Homography& map) const
    {
        const Homography in = {
            {1 / half, 0, -centreX / half, 0, 1 / half, -centreY / half, 0, 0, 1}};
        const Homography out = {{half, 0, centreX, 0, half, centreY, 0, 0, 1}};
        return Compose(out, Compose(map, in));
    }
};

static size_t UnknownsOf(MotionModel model)
{
    constexpr size_t kUnknowns[] = {2, 4, 6, 8};
    return kUnknowns[size_t(model)];
}

static void AddPair(NormalEquations* equations, MotionModel model, const CBxPoint<double>& p,
                    const CBxPoint<double>& q, double weight)
{
    const double x = p.x, y = p.y, u = q.x, v = q.y;
    switch (model)
    {
    case MotionModel::Shift:
        equations->Add({1, 0}, u - x, weight);
        equations->Add({0, 1}, v - y, weight);
        break;
    case MotionModel::Similarity:
        equations->Add({x, -y, 1, 0}, u, weight);
        equations->Add({y, x, 0, 1}, v, weight);
        break;
    case MotionModel::Affine:
    case MotionModel::Projective: // an affine map has no use for the last two
        equations->Add({x, y, 1, 0, 0, 0, -u * x, -u * y}, u, weight);
        equations->Add({0, 0, 0, x, y, 1, -v * x, -v * y}, v, weight);
        break;
    }
}

static Homography MapOf(const std::array<double, kMostUnknowns>& k, MotionModel model)
{
    switch (model)
    {
    case MotionModel::Shift: return Translation(k[0], k[1]);
    case MotionModel::Similarity: return {{k[0], -k[1], k[2], k[1], k[0], k[3], 0, 0, 1}};
    case MotionModel::Affine: return {{k[0], k[1], k[2], k[3], k[4], k[5], 0, 0, 1}};
    case MotionModel::Projective: break;
    }
    return {{k[0], k[1], k[2], k[3], k[4], k[5], k[6], k[7], 1}};
}

static Homography LeastSquares(const std::vector<PlacePair>& pairs,
                               const std::vector<double>& weights, MotionModel model,
                               CBxSize<int> frame)
{
    const FrameScale scale(frame);
    NormalEquations equations = {UnknownsOf(model)};
    double sum = 0;
    for (size_t i = 0; i < pairs.size(); ++i)
    {
        AddPair(&equations, model, scale.Of(pairs[i].from), scale.Of(pairs[i].to), weights[i]);
        sum += weights[i];
    }
    if (model == MotionModel::Projective)
        for (const size_t perspective : {6, 7})
            equations.row[perspective][perspective] += kPerspectiveRidge * sum;
    return scale.BackToPixels(MapOf(equations.Solve(), model));
}

static MotionModel ModelFor(MotionModel wanted, int pairs)
{
    const MotionModel most = pairs >= 24   ? MotionModel::Projective
                             : pairs >= 12 ? MotionModel::Affine
                             : pairs >= 4  ? MotionModel::Similarity
                                           : MotionModel::Shift;
    return std::min(wanted, most);
}

// Tukey's biweight of the distances, nothing from `reach` on.
static void Weigh(RobustMap* fit, const std::vector<PlacePair>& pairs, double reach)
{
    double sum = 0, squares = 0;
    fit->agreeing = 0;
    for (size_t i = 0; i < pairs.size(); ++i)
    {
        const double distance = DistanceSquared(fit->map, pairs[i]);
        const double near = std::max(0.0, 1 - distance / Square(reach));
        fit->weight[i] = pairs[i].trust * Square(near);
        fit->agreeing += fit->weight[i] > 0;
        sum += fit->weight[i];
        squares += fit->weight[i] * distance;
    }
    fit->residual = sum > 0 ? std::sqrt(squares / sum) : 0;
}

RobustMap FitRobustly(const std::vector<PlacePair>& pairs, MotionModel model, CBxSize<int> frame,
                      const Homography& start, double tolerance)
{
    RobustMap fit;
    fit.weight.resize(pairs.size());
    fit.map = BestStart(pairs, frame, start, 3 * tolerance);
    for (int round = 0; round < kRounds; ++round)
    {
        Weigh(&fit, pairs, std::max(3 * tolerance / (1 + round), 1.5 * tolerance));
        if (fit.agreeing < 3)
            return fit;
        fit.map = LeastSquares(pairs, fit.weight, ModelFor(model, fit.agreeing), frame);
    }
    Weigh(&fit, pairs, 1.5 * tolerance);
    return fit;
}
