// Number conversion: bit-exact parsers in both dialects, stream readers and what they leave, integer
// writers, the scaled short form.
//
// Expected bit patterns of the string parsers come from a separate model of the algorithm in exact
// rational arithmetic (each operation rounded once), not from this library.
#include <tevbase/numconv.h>

#include <support/testutil.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>
#include <sstream>
#include <string>

namespace {

template <class Real> auto Bits(Real v)
{
    typename std::conditional<sizeof(Real) == 8, uint64_t, uint32_t>::type u;
    std::memcpy(&u, &v, sizeof u);
    return u;
}

template <class Real> Real FromBits(typename std::conditional<sizeof(Real) == 8, uint64_t, uint32_t>::type u)
{
    Real v;
    std::memcpy(&v, &u, sizeof v);
    return v;
}

constexpr uint64_t kUntouched = 0x7FF4DEADBEEF0001; // signalling NaNs that no parser produces
constexpr uint32_t kUntouchedF = 0x7FA0BEEF;

double Sentinel() { return FromBits<double>(kUntouched); }
float SentinelF() { return FromBits<float>(kUntouchedF); }

struct ParseRow {
    const char* in;
    int count;     // 0: fails
    uint64_t bits; // of the result
};

void CheckDouble(int16_t (*parse)(const char*, double*), const ParseRow& r)
{
    double v = Sentinel();
    EXPECT_EQ(parse(r.in, &v), r.count) << r.in;
    EXPECT_EQ(Bits(v), r.count != 0 ? r.bits : kUntouched) << r.in << " gave " << v;
}

} // namespace

TEST(StrTointTest, DigitsSignsAndWrapping)
{
    struct Row {
        const char* in;
        int count, value;
    } rows[] = {
        {"  -42x", 5, -42}, {"+", 0, 0},  {"", 0, 0},      {" \t\n", 0, 0}, {"+-1", 0, 0}, {"x1", 0, 0},
        {"007", 3, 7},      {"+12 34", 3, 12}, {"2147483647", 10, INT_MAX}, {"-2147483648", 11, INT_MIN},
        {"2147483648", 10, INT_MIN}, {"4294967297", 10, 1}, // unsigned 32-bit sum, then the sign
        {"1234567890123456", 16, 1015724736}, {"12345678901234567", 0, 0}, // a 17th digit fails
    };
    for (const Row& r : rows) {
        int v = -7;
        EXPECT_EQ(str_toint(r.in, &v), r.count) << r.in;
        EXPECT_EQ(v, r.count != 0 ? r.value : -7) << r.in;
    }
    int v = -7;
    EXPECT_EQ(str_toint(nullptr, &v), 0);
    EXPECT_EQ(v, -7);
    EXPECT_EQ(str_tolong(" -123abc"), -123);
    EXPECT_EQ(str_tolong(nullptr), 0);
}

TEST(StrTodoubleTest, EngineeringDialectBitExact)
{
    const ParseRow rows[] = {
        {"4.7k", 4, 0x40B25C0000000000},  {"10meg", 5, 0x416312D000000000}, {"10mEg", 5, 0x416312D000000000},
        {"1MEGA", 4, 0x412E848000000000}, {"10m", 3, 0x3F847AE147AE147B},   {"1me", 2, 0x3F50624DD2F1A9FC},
        {"1mil", 2, 0x3F50624DD2F1A9FC}, // MIL belongs to the stream readers
        {"1e-3", 4, 0x3F50624DD2F1A9FD}, // 0.1 * 0.1 * 0.1, not the double nearest 0.001
        {"4D-2", 4, 0x3FA47AE147AE147C},  {"1.e2", 4, 0x4059000000000000},  {"2.2e3", 5, 0x40A1300000000000},
        {"1e 3", 4, 0x408F400000000000},  {"1e+03", 5, 0x408F400000000000}, {"4d2", 3, 0x4079000000000000},
        {"5e4294967296", 12, 0x4014000000000000}, // the exponent wraps to 0
        {"1e308", 5, 0x7FE1CCF385EBC89F}, {"1e309", 5, 0x7FF0000000000000}, {"1e-400", 6, 0x0000000000000000},
        {"1e-300", 6, 0x01A56E1FC2F8F3BE}, {".5", 2, 0x3FE0000000000000},   {"-0", 2, 0x8000000000000000},
        {"  +3.3n", 7, 0x3E2C58C6D8A67BA9}, {"123x", 3, 0x405EC00000000000}, {"3.14159", 7, 0x400921F9F01B866E},
        {"1.5U", 4, 0x3EB92A737110E45B}, // micro is 1.000000000000001e-06 here
        {"2a", 2, 0x3C42725DD1D243AC}, {"2f", 2, 0x3CE203AF9EE75616}, {"2p", 2, 0x3D819799812DEA11},
        {"2t", 2, 0x427D1A94A2000000}, {"2g", 2, 0x41DDCD6500000000},
        // Fused multiply-add from the least significant digit: neither strtod's result nor that of a
        // separate multiply and add.
        {"919792896213757755481562", 24, 0x44E858C254815943},
        {"0.98259791907483378876232860", 28, 0x3FEF717130F168FD},
        {"11111111111111111111111111111111", 32, 0x466187BDF63DB730},
        {"111111111111111111111111111111111.5", 35, 0x3FE0000000000000}, // 33 digits count as none
        {"111111111111111111111111111111111", 0, 0},
        {"-inf", 4, 0xFFEFFFFFFFFFFFFF}, {"+min", 4, 0x0010000000000000},
        {"inf ", 0, 0}, {"INF", 0, 0}, {"infinity", 0, 0}, // the word must end the string
        {".", 0, 0}, {"-", 0, 0}, {"   ", 0, 0}, {"e5", 0, 0}, {"5e", 0, 0}, {"5d+", 0, 0}, // bad exponents fail
        {"5e12345678901234567", 0, 0},
    };
    for (const ParseRow& r : rows)
        CheckDouble(str_todouble, r);
    CheckDouble(str_todouble, {nullptr, 0, 0});
}

TEST(StrCtodoubleTest, SiDialectBitExact)
{
    const ParseRow rows[] = {
        {"10M", 3, 0x416312D000000000}, {"10m", 3, 0x3F847AE147AE147B},  {"5%", 2, 0x3FA999999999999A},
        {"3u", 2, 0x3EC92A737110E45B},  {"1P", 2, 0x430C6BF526340000},   {"1p", 2, 0x3D719799812DEA11},
        {"1Y", 2, 0x44EA784379D99DB4},  {"1y", 2, 0x3AF357C299A88EA7},   {"1Z", 2, 0x444B1AE4D6E2EF50},
        {"1z", 2, 0x3B92E3B40A0E9B4F},  {"1k", 2, 0x408F400000000000},   {"1K", 2, 0x408F400000000000},
        {"1g", 1, 0x3FF0000000000000},  {"1meg", 2, 0x3F50624DD2F1A9FC}, {"2E3", 3, 0x409F400000000000},
        {"2D-1", 4, 0x3FC999999999999A}, {"1U", 1, 0x3FF0000000000000},  {"-1.25m", 6, 0xBF547AE147AE147B},
        {"2E", 0, 0}, {"2e", 0, 0}, // E always starts an exponent: exa is not a suffix
    };
    for (const ParseRow& r : rows)
        CheckDouble(str_ctodouble, r);
}

TEST(StrTofloatTest, SinglePrecisionThroughout)
{
    const struct {
        const char* in;
        int count;
        uint32_t bits;
    } rows[] = {
        {"4.7k", 4, 0x4592E000},  {"1e-3", 4, 0x3A83126F},  {"9871463934", 10, 0x501318A6}, {"170362714050", 12, 0x521EA9A2},
        {"0.1", 3, 0x3DCCCCCD},   {"1.5u", 4, 0x35C9539C},  {"10meg", 5, 0x4B189680},       {"inf", 3, 0x7F7FFFFF},
        {"-min", 4, 0x80800000},  {"1e39", 4, 0x7F800000},  {"2.5e-3", 6, 0x3B23D70B},       {"x", 0, 0},
        {"0.77777777777777777777777777777777", 34, 0x3F471C71},
    };
    for (const auto& r : rows) {
        for (auto parse : {str_tofloat, str_tofloat_}) {
            float v = SentinelF();
            EXPECT_EQ(parse(r.in, &v), r.count) << r.in;
            EXPECT_EQ(Bits(v), r.count != 0 ? r.bits : kUntouchedF) << r.in;
        }
    }
}

namespace {

// What a stream reader did: the result (or untouched), the state, and what it left unread.
struct StreamResult {
    bool stored;
    uint64_t bits;
    bool fail, eof;
    std::string rest;
};

template <class Real> StreamResult Read(std::istream& (*get)(std::istream&, Real&), const std::string& text)
{
    std::istringstream in(text);
    Real v = sizeof(Real) == 8 ? Real(Sentinel()) : Real(SentinelF());
    const auto before = Bits(v);
    get(in, v);
    StreamResult r{Bits(v) != before, Bits(v), in.fail(), in.eof(), ""};
    in.clear();
    r.rest.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return r;
}

struct StreamRow {
    const char* in;
    bool ok;
    double value; // when ok
    bool eof;
    const char* rest;
};

void CheckStream(std::istream& (*get)(std::istream&, double&), const StreamRow& row)
{
    const StreamResult r = Read(get, row.in);
    EXPECT_EQ(r.fail, !row.ok) << row.in;
    EXPECT_EQ(r.stored, row.ok) << row.in;
    EXPECT_EQ(r.bits, row.ok ? Bits(row.value) : kUntouched) << row.in;
    EXPECT_EQ(r.eof, row.eof) << row.in;
    EXPECT_EQ(r.rest, row.rest) << row.in;
}

} // namespace

TEST(GetDoubleTest, EngineeringStreamsConsumeAndLeave)
{
    const std::string big = "1" + std::string(199, '0'); // 127 digits kept, the rest read and dropped
    const std::string long_exponent = "1e" + std::string(31, '0') + "5";
    const StreamRow rows[] = {
        {"3MIL", true, 3 * 2.54e-5, false, ""}, {"3mil;", true, 3 * 2.54e-5, false, ";"},
        {"2meg x", true, 2e6, false, " x"},     {"3MEL", false, 0, false, ""}, {"3MIG!", false, 0, false, "!"},
        {"3MX", true, 3e-3, false, "X"},         {"3MEX", true, 3e-3, false, "X"}, // the E stays consumed
        {"3MI", true, 3e-3, true, ""},           {"3M", true, 3e-3, true, ""},
        {"1.5u", true, 1.5 * 1e-6, false, ""}, // exact micro
        {"  7k rest", true, 7000, false, " rest"}, {"2.5", true, 2.5, true, ""}, // the end is no suffix
        {"-5 ", true, -5, false, " "},          {"+.5", true, 0.5, true, ""},    {"5.x", true, 5, false, "x"},
        {"- 5", false, 0, false, " 5"},         {". ", false, 0, false, " "},    {"", false, 0, true, ""},
        {"   ", false, 0, true, ""},            {"abc", false, 0, false, "c"},   {"inf", false, 0, false, "f"},
        {"1e3", true, 1000, false, ""}, // an exponent clears the state, eofbit too
        {"1e-3", true, 1.0 / 1000, false, ""}, // inverted, not multiplied by 0.1
        {"1e 3;", true, 1000, false, ";"},      {"5e2x", true, 500, false, "x"}, {"4d2", true, 400, false, ""},
        {"3ex", false, 0, false, ""},           {"3e", false, 0, true, ""},      {"4e+ ", true, 4, false, " "},
        {long_exponent.c_str(), true, 1, false, "5"}, // 31 exponent digits at most
        {"1e999999", true, HUGE_VAL, false, ""}, {big.c_str(), true, 1e126, true, ""},
    };
    for (const StreamRow& row : rows)
        CheckStream(GetDouble, row);
}

TEST(GetDoubleTest, SiStreams)
{
    const StreamRow rows[] = {
        {"10M", true, 1e7, false, ""},     {"10m", true, 0.01, false, ""}, {"1meg", true, 1e-3, false, "eg"},
        {"5%", true, 5 * 0.01, false, ""}, {"3u", true, 3 * 1e-6, false, ""}, {"1P1p", true, 1e15, false, "1p"},
        {"1k", true, 1e3, false, ""},      {"2E5", true, 2e5, false, ""},  {"2E", false, 0, true, ""},
        {"2U", true, 2, false, "U"},       {"1y", true, 1e-24, false, ""},
    };
    for (const StreamRow& row : rows)
        CheckStream(GetCDouble, row);
}

TEST(GetDoubleTest, FloatReadersNarrowAndStatesCarryOver)
{
    EXPECT_EQ(Read(GetFloat, "0.1u").bits, Bits(static_cast<float>(0.1 * 1e-6)));
    EXPECT_EQ(Read(GetCFloat, "2.5k").bits, Bits(2500.0f));
    EXPECT_FALSE(Read(GetCFloat, "x").stored);
    std::istringstream in("1k 2meg 3");
    double a = 0, b = 0, d = 0, e = -1;
    GetDouble(GetDouble(GetDouble(in, a), b), d);
    EXPECT_EQ(a + b + d, 2001003);
    EXPECT_FALSE(GetDouble(in, e)); // a failed stream stores nothing
    EXPECT_EQ(e, -1);
}

TEST(IntWriterTest, DecimalAndRadix)
{
    char buf[32];
    const struct {
        std::string got; // copied at once: every row writes into buf
        std::string expect;
    } rows[] = {
        {str_int2str10(buf, 20, -5, 4, '0'), "00-5"}, // the fill goes before the sign
        {str_int2str10(buf, 20, 42, 6, ' '), "    42"},
        {str_int2str10(buf, 20, 42, 6, '\0'), "42"},
        {str_int2str10(buf, 20, 12345, 2, '*'), "12345"},
        {str_int2str10(buf, 20, 0, 0, '\0'), "0"},
        {str_int2str10(buf, 20, INT_MIN, 0, '\0'), "-2147483648"},
        {str_long2str10(buf, 32, LONG_MIN, 0, '\0'), std::to_string(LONG_MIN)},
        {str_longlong2str10(buf, 32, LLONG_MIN, 0, '\0'), "-9223372036854775808"},
        {str_uint2str10(buf, 20, UINT_MAX, 12, '0'), "004294967295"},
        {str_ulong2str10(buf, 32, ULONG_MAX, 0, '\0'), std::to_string(ULONG_MAX)},
        {str_ulonglong2str10(buf, 32, ULLONG_MAX, 0, '\0'), "18446744073709551615"},
        {str_int2strradix(buf, 20, 255, 4, '0', 16), "0x00ff"},
        {str_int2strradix(buf, 20, -1, 0, '\0', 16), "0xffffffff"},
        {str_int2strradix(buf, 20, 0, 0, '\0', 8), "00"},
        {str_int2strradix(buf, 20, 8, 0, '\0', 8), "010"},
        {str_int2strradix(buf, 20, 10, 6, ' ', 2), "0b  1010"}, // the prefix goes before the fill
        {str_long2strradix(buf, 32, -1L, 0, '\0', 16), "0x" + std::string(2 * sizeof(long), 'f')},
        {str_longlong2strradix(buf, 32, -1LL, 0, '\0', 8), "01777777777777777777777"},
    };
    for (const auto& r : rows)
        EXPECT_EQ(r.got, r.expect);
    EXPECT_EQ(str_uint2str10(buf, 10, 123, 0, '\0'), buf + 6); // the text ends at buf[size-1]
    EXPECT_EQ(buf[9], '\0');
}

TEST(IntWriterDeathTest, RadixOtherThan2_8_16Aborts)
{
    char buf[32];
    EXPECT_DEATH(str_int2strradix(buf, 32, 255, 0, '\0', 10), "");
    EXPECT_DEATH(str_longlong2strradix(buf, 32, 255, 0, '\0', 0), "");
}

TEST(StrToscTest, ScaledShortForm)
{
    const struct {
        double value;
        const char* text;
    } rows[] = {
        {0.0, "0_00"},      {-0.0, "0_00"},    {4700, "4K70"},     {47000, "47K0"},    {470000, "470K"},
        {-0.0047, "-4M70"}, {9.9996, "10_00"}, {9999.6, "10K00"},  {1000, "1K00"},     {1e-3, "1M00"},
        {1e-15, "1F00"},    {1e-18, "1A00"},   {-1e6, "-1ME00"},   {-470e6, "-470ME"}, {999e9, "999G"},
        {9.99e12, "9T99"},  {12.345, "12_3"},  {1.005, "1_00"},    {-999.4, "-999_"},
    };
    for (const auto& r : rows) {
        char buf[8];
        EXPECT_STREQ(str_tosc_r(buf, r.value), r.text) << r.value;
    }
    const double inf = std::numeric_limits<double>::infinity();
    for (double out_of_range : {1e13, 1e-19, inf, -inf, std::nan("")}) {
        char buf[8] = "keep";
        EXPECT_STREQ(str_tosc_r(buf, out_of_range), "keep") << out_of_range;
    }
    char* shared = str_tosc(4700);
    EXPECT_EQ(str_tosc(1e15), shared);
    EXPECT_STREQ(shared, "4K70"); // left as it was
}

// Random texts over the grammar's alphabet: a parse never reads past the string, a failure leaves
// the result alone, and the consumed prefix alone parses to the same count and bits.
TEST(NumberGrammarFuzz, ConsumedPrefixParsesAlike)
{
    static const char alphabet[] = "0123456789012345678.+- eEdDmMgGkKuUpPnNaAfFtT%yYzZiInfl";
    std::mt19937 rng(99);
    for (int round = 0; round < 20000; ++round) {
        std::string s;
        for (int n = rng() % 12; n > 0; --n)
            s += alphabet[rng() % (sizeof alphabet - 1)];
        for (auto parse : {str_todouble, str_ctodouble}) {
            double v = Sentinel();
            const int16_t n = parse(s.c_str(), &v);
            ASSERT_GE(n, 0);
            ASSERT_LE(static_cast<std::size_t>(n), s.size()) << s;
            if (n == 0) {
                ASSERT_EQ(Bits(v), kUntouched) << s;
                continue;
            }
            double again = Sentinel();
            ASSERT_EQ(parse(s.substr(0, n).c_str(), &again), n) << s;
            ASSERT_EQ(Bits(again), Bits(v)) << s;
        }
        for (auto get : {GetDouble, GetCDouble}) {
            const StreamResult r = Read(get, s);
            ASSERT_EQ(r.stored, !r.fail) << s;
            ASSERT_LE(r.rest.size(), s.size());
            ASSERT_EQ(s.compare(s.size() - r.rest.size(), std::string::npos, r.rest), 0) << s;
        }
    }
}
