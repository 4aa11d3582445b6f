// The weighting of a band level, a piece of a row at a time: what the piece needs of the Gaussian
// level is copied and turned into floats, then come the weights, then the sums, so that the
// compiler sees loops that it can vectorise and everything in between stays in the first-level
// cache. Loops over the copies run on to a whole group of columns: the range of a task ends
// anywhere, and columns left over would be done one by one, which costs as much as all others.

constexpr int kColumns = 512; // of a piece
constexpr int kGroup = 16;    // floats of the widest vector
constexpr int kSamples = 64;  // bytes of it
constexpr int kFetched = 128; // columns whose sums are asked for at a time
constexpr int kRoom = kColumns + 2 + kGroup + kSamples;

struct WeighPiece
{
    float gauss[3][kRoom];
    float rows[3][kRoom]; // above, at and below the centres of the windows, summed over channels
    float laplacian[kRoom];
    float weights[kRoom];
    float band[kRoom];
};

static inline int WholeGroups(int count, int group = kGroup)
{
    return (count + group - 1) / group * group;
}

// Samples of one row from `column` on, with zeros up to a whole group of samples.
template <typename T>
static void CopySamples(T* __restrict to, const FusionPlane& plane, int row, int column, int count)
{
    const T* from = static_cast<const T*>(plane.samples) + (long long)row * plane.width + column;
    __builtin_memcpy(to, from, unsigned(count) * sizeof(T));
    __builtin_memset(to + count, 0, unsigned(WholeGroups(count, kSamples) - count) * sizeof(T));
}

template <typename T>
static void LoadFloats(float* __restrict to, const FusionPlane& plane, int row, int column,
                       int count)
{
    T samples[kRoom];
    CopySamples(samples, plane, row, column, count);
    for (int n = 0; n < WholeGroups(count, kSamples); ++n)
        to[n] = float(samples[n]);
}

template <typename T, int Channels>
static void LoadSums(float* __restrict to, const FusionPlane* planes, int row, int column,
                     int count)
{
    T samples[Channels][kRoom];
    for (int c = 0; c < Channels; ++c)
        CopySamples(samples[c], planes[c], row, column, count);
    for (int n = 0; n < WholeGroups(count, kSamples); ++n)
        to[n] = Channels == 1 ? float(samples[0][n])
                              : float(samples[0][n]) + float(samples[Channels / 2][n]) +
                                    float(samples[Channels - 1][n]);
}

// What the four edge neighbours are taken against the centre in: double for floats, because the
// difference of large samples is what decides between structure and rounding noise. The sums of
// integers are exact in single precision.
template <typename T>
struct DifferenceOf
{
    using Type = float;
};
template <>
struct DifferenceOf<float>
{
    using Type = double;
};

// Index of the centre of a sample's 3x3 window: itself, or its inward neighbour on a border.
static inline int WindowCentre(int i, int size)
{
    return i < 1 ? 1 : (i > size - 2 ? size - 2 : i);
}

// laplacian[1 + n] for the columns from + n, up to end.
template <typename T, int Channels>
static void Laplacians(WeighPiece* piece, const FusionPlane* planes, int row, int from, int end)
{
    const int width = planes[0].width, centre = WindowCentre(row, planes[0].height);
    const int first = WindowCentre(from, width), last = WindowCentre(end - 1, width);
    for (int r = 0; r < 3; ++r)
        LoadSums<T, Channels>(piece->rows[r], planes, centre - 1 + r, first - 1, last - first + 3);

    using Wide = typename DifferenceOf<T>::Type;
    const float* up = piece->rows[0] + 1;
    const float* here = piece->rows[1] + 1;
    const float* down = piece->rows[2] + 1;
    float* __restrict out = piece->laplacian + 1 + (first - from);
    for (int n = 0; n < WholeGroups(last - first + 1); ++n)
        out[n] = float(Wide(up[n]) + Wide(here[n - 1]) - Wide(4) * Wide(here[n]) +
                       Wide(here[n + 1]) + Wide(down[n]));

    float* laplacian = piece->laplacian + 1;
    if (from == 0)
        laplacian[0] = laplacian[1];
    if (end == width)
        laplacian[width - 1 - from] = laplacian[width - 2 - from];
    for (int n = end - from; n < WholeGroups(end - from); ++n)
        laplacian[n] = 0.0f;
}

static inline float Weight1(float value, float lap, float mid, float spread)
{
    const float d = value - mid;
    const float e = Exp(-(d * d / spread)) + 1e-5f;
    const float c = __builtin_sqrtf(__builtin_fabsf(lap) + 1e-5f);
    return float(double(c * e * e) + 1e-5);
}

// The three factors each have the exponent 0.16 (contrast half of it, exposure twice), so one power
// of their product serves: (sqrt(c) * s * e^2)^0.16. The product stays within 1e-18 .. 1e8.
static inline float Weight3(float g0, float g1, float g2, float lap, float mid, float spread)
{
    const float m = (g0 + g1 + g2) / 3.0f;
    const float d = m - mid;
    const float e = Exp(-(d * d / spread)) + 1e-5f;
    const float c = __builtin_fabsf(lap) / 3.0f + 1e-5f;
    const float d0 = m - g0, d1 = m - g1, d2 = m - g2;
    const double variance = double(d0 * d0 + d1 * d1 + d2 * d2) / 3.0;
    const float s = float(__builtin_sqrt(variance) + 1e-5);
    return float(double(Pow016(__builtin_sqrtf(c) * s * (e * e))) + 1e-5);
}

// Weights of `count` columns of the piece, a multiple of a group.
template <int Channels>
static void Weights(WeighPiece* piece, float mid, float spread, int first, int count)
{
    const float* g0 = piece->gauss[0] + first;
    const float* g1 = piece->gauss[1] + first;
    const float* g2 = piece->gauss[2] + first;
    const float* laplacian = piece->laplacian + 1 + first;
    float* __restrict weights = piece->weights + first;
    for (int n = 0; n < count; ++n)
        weights[n] = Channels == 1 ? Weight1(g0[n], laplacian[n], mid, spread)
                                   : Weight3(g0[n], g1[n], g2[n], laplacian[n], mid, spread);
}

// Adds each value `additions` times.
static void AddWeights(float* __restrict to, const float* __restrict weights, int count,
                       int additions)
{
    if (additions == 2)
        for (int n = 0; n < count; ++n)
            to[n] = (to[n] + weights[n]) + weights[n];
    else
        for (int n = 0; n < count; ++n)
            to[n] += weights[n];
}

// The same for weight * (gauss - expanded): the band.
static void AddBand(float* __restrict to, const float* __restrict weights,
                    const float* __restrict gauss, const float* __restrict expanded, int count,
                    int additions)
{
    if (additions == 2)
        for (int n = 0; n < count; ++n)
        {
            const float value = weights[n] * (gauss[n] - expanded[n]);
            to[n] = (to[n] + value) + value;
        }
    else
        for (int n = 0; n < count; ++n)
            to[n] += weights[n] * (gauss[n] - expanded[n]);
}

// Sums and coarse samples come from main memory. Asked for a few at a time, they arrive while the
// weights are being computed. 16 floats are a cache line.
static void FetchSums(const float* sums, int count)
{
    for (int n = 0; n < count; n += 16)
        __builtin_prefetch(sums + n, 1);
}

static void FetchCoarse(const FusionBandJob& job, int channel, int row, int from, int count)
{
    const int coarseRow = Smaller(row / 2 + 1, job.coarseHeight - 1);
    const float* samples = job.coarse[channel] + (long long)coarseRow * job.coarseWidth + from / 2;
    for (int n = 0; n < count / 2; n += 16)
        __builtin_prefetch(samples + n, 0);
}

template <typename T, int Channels>
static void Weigh(const FusionBandJob* job, int row, int firstColumn, int endColumn)
{
    const int width = job->gauss[0].width, height = job->gauss[0].height;
    const Taps taps = TapsOf(job->kernel, 2.0f);
    WeighPiece piece;
    for (int from = firstColumn; from < endColumn; from += kColumns)
    {
        const int end = Smaller(from + kColumns, endColumn), count = end - from;
        const long long at = (long long)row * width + from;
        for (int c = 0; c < Channels; ++c)
            LoadFloats<T>(piece.gauss[c], job->gauss[c], row, from, count);
        Laplacians<T, Channels>(&piece, job->gauss, row, from, end);
        for (int first = 0; first < count; first += kFetched)
        {
            const int part = Smaller(kFetched, count - first);
            FetchSums(job->weights + at + first, part);
            for (int c = 0; c < Channels; ++c)
            {
                FetchSums(job->sums[c] + at + first, part);
                FetchCoarse(*job, c, row, from + first, part);
            }
            Weights<Channels>(&piece, job->mid, job->spread, first, WholeGroups(part));
        }
        AddWeights(job->weights + at, piece.weights, count, job->additions);
        for (int c = 0; c < Channels; ++c)
        {
            ExpandPiece(piece.band, width, height, job->coarse[c], job->coarseWidth,
                        job->coarseHeight, taps, row, from, end);
            AddBand(job->sums[c] + at, piece.weights, piece.gauss[c], piece.band, count,
                    job->additions);
        }
    }
}
