// Number conversion: bit-exact parsers in both dialects, stream readers and what they leave, integer
// writers, the scaled short form.
//
// Expected bit patterns of the string parsers come from a separate model of the algorithm in exact
// rational arithmetic (each operation rounded once), not from this library.
#include <tevbase/numconv.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>
#include <sstream>
#include <string>

namespace {

// The bits of a double, or of a float in the low 32 bits.
template <class Real> uint64_t Bits(Real v)
{
    uint64_t u = 0;
    std::memcpy(&u, &v, sizeof v);
    return u;
}

// A signalling NaN, which no parser produces: a result still holding it was not written.
template <class Real> Real Untouched()
{
    return std::numeric_limits<Real>::signaling_NaN();
}

// What a stream reader did: whether it stored, the result, the state, and what it left unread.
struct StreamResult {
    bool stored;
    uint64_t bits;
    bool fail, eof;
    std::string rest;
};

template <class Real> StreamResult Read(std::istream& (*get)(std::istream&, Real&), const std::string& text)
{
    std::istringstream in(text);
    Real v = Untouched<Real>();
    get(in, v);
    StreamResult r{Bits(v) != Bits(Untouched<Real>()), Bits(v), in.fail(), in.eof(), ""};
    in.clear();
    r.rest.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return r;
}

} // namespace

TEST(StrTointTest, DigitsSignsAndWrapping)
{
    const struct { const char* in; int count, value; } rows[] = {
        {"  -42x", 5, -42}, {"+", 0, 0}, {" \t\n", 0, 0}, {"+-1", 0, 0}, {"007", 3, 7},
        {"2147483648", 10, INT_MIN}, {"4294967297", 10, 1}, // unsigned 32-bit sum, then the sign
        {"1234567890123456", 16, 1015724736}, {"12345678901234567", 0, 0}, // a 17th digit fails
    };
    for (const auto& r : rows) {
        int v = -7;
        EXPECT_EQ(str_toint(r.in, &v), r.count) << r.in;
        EXPECT_EQ(v, r.count != 0 ? r.value : -7) << r.in;
    }
    EXPECT_EQ(str_toint(nullptr, nullptr), 0);
    EXPECT_EQ(str_tolong(" -123abc"), -123);
    EXPECT_EQ(str_tolong(nullptr), 0);
}

// Parser 'e' str_todouble (engineering), 's' str_ctodouble (SI), 'f' str_tofloat (engineering, float).
TEST(StrTodoubleTest, BothDialectsBitExact)
{
    const struct { char parser; const char* in; int count; uint64_t bits; } rows[] = {
        {'e', "4.7k", 4, 0x40B25C0000000000}, {'e', "10mEg", 5, 0x416312D000000000}, {'e', "1MEGA", 4, 0x412E848000000000},
        {'e', "10m", 3, 0x3F847AE147AE147B}, {'e', "1me", 2, 0x3F50624DD2F1A9FC}, {'e', "1mil", 2, 0x3F50624DD2F1A9FC},
        {'e', "1e-3", 4, 0x3F50624DD2F1A9FD}, // 0.1 * 0.1 * 0.1, not the double nearest 0.001
        {'e', "4D-2", 4, 0x3FA47AE147AE147C}, {'e', "1.e2", 4, 0x4059000000000000}, {'e', "1e 3", 4, 0x408F400000000000},
        {'e', "5e4294967296", 12, 0x4014000000000000}, {'e', "1e309", 5, 0x7FF0000000000000}, {'e', "1e-400", 6, 0},
        {'e', ".5", 2, 0x3FE0000000000000}, {'e', "-0", 2, 0x8000000000000000}, {'e', "  +3.3n", 7, 0x3E2C58C6D8A67BA9},
        {'e', "123x", 3, 0x405EC00000000000}, {'e', "1.5U", 4, 0x3EB92A737110E45B}, // micro is 1e-6 + 5 ulps
        {'e', "2a", 2, 0x3C42725DD1D243AC}, {'e', "2f", 2, 0x3CE203AF9EE75616}, {'e', "2p", 2, 0x3D819799812DEA11},
        {'e', "2t", 2, 0x427D1A94A2000000}, {'e', "2g", 2, 0x41DDCD6500000000},
        // Fused multiply-add from the least significant digit: neither strtod's result nor that of a
        // separate multiply and add. 33 digits count as none.
        {'e', "919792896213757755481562", 24, 0x44E858C254815943},
        {'e', "0.98259791907483378876232860", 28, 0x3FEF717130F168FD},
        {'e', "11111111111111111111111111111111", 32, 0x466187BDF63DB730},
        {'e', "111111111111111111111111111111111.5", 35, 0x3FE0000000000000},
        {'e', "111111111111111111111111111111111", 0, 0}, {'e', "-inf", 4, 0xFFEFFFFFFFFFFFFF},
        {'e', "+min", 4, 0x0010000000000000}, {'e', "inf ", 0, 0}, {'e', "INF", 0, 0},
        {'e', ".", 0, 0}, {'e', "5e", 0, 0}, {'e', nullptr, 0, 0},
        {'s', "10M", 3, 0x416312D000000000}, {'s', "10m", 3, 0x3F847AE147AE147B}, {'s', "5%", 2, 0x3FA999999999999A},
        {'s', "3u", 2, 0x3EC92A737110E45B}, {'s', "1P", 2, 0x430C6BF526340000}, {'s', "1p", 2, 0x3D719799812DEA11},
        {'s', "1Y", 2, 0x44EA784379D99DB4}, {'s', "1y", 2, 0x3AF357C299A88EA7}, {'s', "1Z", 2, 0x444B1AE4D6E2EF50},
        {'s', "1z", 2, 0x3B92E3B40A0E9B4F}, {'s', "1k", 2, 0x408F400000000000}, {'s', "1K", 2, 0x408F400000000000},
        {'s', "1g", 1, 0x3FF0000000000000}, {'s', "1meg", 2, 0x3F50624DD2F1A9FC}, {'s', "1U", 1, 0x3FF0000000000000},
        {'s', "2E3", 3, 0x409F400000000000}, {'s', "2D-1", 4, 0x3FC999999999999A}, {'s', "2E", 0, 0}, // never exa
        {'f', "4.7k", 4, 0x4592E000}, {'f', "1e-3", 4, 0x3A83126F}, {'f', "9871463934", 10, 0x501318A6},
        {'f', "170362714050", 12, 0x521EA9A2}, {'f', "0.1", 3, 0x3DCCCCCD}, {'f', "1.5u", 4, 0x35C9539C},
        {'f', "10meg", 5, 0x4B189680}, {'f', "inf", 3, 0x7F7FFFFF}, {'f', "-min", 4, 0x80800000},
        {'f', "1e39", 4, 0x7F800000}, {'f', "0.77777777777777777777777777777777", 34, 0x3F471C71},
    };
    for (const auto& r : rows) {
        double d = Untouched<double>();
        float f = Untouched<float>();
        const int count = r.parser == 'f' ? str_tofloat(r.in, &f)
                                          : (r.parser == 'e' ? str_todouble : str_ctodouble)(r.in, &d);
        const uint64_t untouched = r.parser == 'f' ? Bits(Untouched<float>()) : Bits(Untouched<double>());
        EXPECT_EQ(count, r.count) << r.parser << r.in;
        EXPECT_EQ(r.parser == 'f' ? Bits(f) : Bits(d), r.count != 0 ? r.bits : untouched) << r.parser << r.in;
    }
    float f = 0;
    EXPECT_EQ(str_tofloat_("4.7k", &f), 4);
}

// Reader 'e' GetDouble (engineering), 's' GetCDouble (SI). A NaN value: the reader fails.
TEST(GetDoubleTest, StreamsConsumeAndLeave)
{
    const std::string big = "1" + std::string(199, '0'); // 127 digits kept, the rest read and dropped
    const std::string long_exponent = "1e" + std::string(31, '0') + "5"; // 31 exponent digits at most
    const double fails = NAN;
    const struct { char reader; const char* in; double value; bool eof; const char* rest; } rows[] = {
        {'e', "3MIL", 3 * 2.54e-5, false, ""}, {'e', "2meg x", 2e6, false, " x"}, {'e', "3MEL", fails, false, ""},
        {'e', "3MIG!", fails, false, "!"}, {'e', "3MX", 3e-3, false, "X"}, {'e', "3MEX", 3e-3, false, "X"},
        {'e', "3MI", 3e-3, true, ""}, {'e', "3M", 3e-3, true, ""}, {'e', "1.5u", 1.5 * 1e-6, false, ""}, // exact
        {'e', "  7k rest", 7000, false, " rest"}, {'e', "2.5", 2.5, true, ""}, {'e', "-5 ", -5, false, " "},
        {'e', "+.5", 0.5, true, ""}, {'e', "5.x", 5, false, "x"}, {'e', "- 5", fails, false, " 5"},
        {'e', ". ", fails, false, " "}, {'e', "", fails, true, ""}, {'e', "abc", fails, false, "c"},
        {'e', "inf", fails, false, "f"}, // two characters go, then failure: no special words
        {'e', "1e3", 1000, false, ""},   // an exponent clears the state, eofbit too
        {'e', "1e-3", 1.0 / 1000, false, ""}, {'e', "1e 3;", 1000, false, ";"}, {'e', "4d2", 400, false, ""},
        {'e', "3ex", fails, false, ""}, {'e', "3e", fails, true, ""}, {'e', "4e+ ", 4, false, " "},
        {'e', long_exponent.c_str(), 1, false, "5"}, {'e', "1e999999", HUGE_VAL, false, ""},
        {'e', big.c_str(), 1e126, true, ""}, {'s', "10M", 1e7, false, ""}, {'s', "10m", 0.01, false, ""},
        {'s', "1meg", 1e-3, false, "eg"}, {'s', "5%", 5 * 0.01, false, ""}, {'s', "3u", 3 * 1e-6, false, ""},
        {'s', "1P1p", 1e15, false, "1p"}, {'s', "2E5", 2e5, false, ""}, {'s', "2E", fails, true, ""},
        {'s', "2U", 2, false, "U"}, {'s', "1y", 1e-24, false, ""},
    };
    for (const auto& row : rows) {
        const StreamResult r = Read(row.reader == 'e' ? GetDouble : GetCDouble, row.in);
        EXPECT_EQ(r.fail, std::isnan(row.value)) << row.reader << row.in;
        EXPECT_EQ(r.bits, std::isnan(row.value) ? Bits(Untouched<double>()) : Bits(row.value)) << row.in;
        EXPECT_EQ(r.eof, row.eof) << row.in;
        EXPECT_EQ(r.rest, row.rest) << row.in;
    }
    EXPECT_EQ(Read(GetFloat, "0.1u").bits, Bits(static_cast<float>(0.1 * 1e-6))); // narrowed from the double
    EXPECT_EQ(Read(GetCFloat, "2.5k").bits, Bits(2500.0f));
    EXPECT_FALSE(Read(GetFloat, "x").stored);
}

TEST(IntWriterTest, DecimalAndRadix)
{
    char buf[32];
    const struct { std::string got, expect; } rows[] = { // copied at once: each row writes into buf
        {str_int2str10(buf, 20, -5, 4, '0'), "00-5"}, // the fill goes before the sign
        {str_int2str10(buf, 20, 42, 6, ' '), "    42"}, {str_int2str10(buf, 20, 42, 6, '\0'), "42"},
        {str_int2str10(buf, 20, INT_MIN, 0, 0), "-2147483648"},
        {str_uint2str10(buf, 20, UINT_MAX, 12, '0'), "004294967295"},
        {str_longlong2str10(buf, 32, LLONG_MIN, 0, 0), "-9223372036854775808"},
        {str_long2str10(buf, 32, LONG_MIN, 0, 0), std::to_string(LONG_MIN)},
        {str_ulong2str10(buf, 32, ULONG_MAX, 0, 0), std::to_string(ULONG_MAX)},
        {str_long2strradix(buf, 32, -1L, 0, 0, 16), "0x" + std::string(2 * sizeof(long), 'f')},
        {str_ulonglong2str10(buf, 32, ULLONG_MAX, 0, 0), "18446744073709551615"},
        {str_int2strradix(buf, 20, 255, 4, '0', 16), "0x00ff"}, {str_int2strradix(buf, 20, -1, 0, 0, 16), "0xffffffff"},
        {str_int2strradix(buf, 20, 0, 0, 0, 8), "00"},
        {str_int2strradix(buf, 20, 10, 6, ' ', 2), "0b  1010"}, // the prefix goes before the fill
        {str_longlong2strradix(buf, 32, -1LL, 0, 0, 8), "01777777777777777777777"},
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
}

TEST(StrToscTest, ScaledShortForm)
{
    const struct { double value; const char* text; } rows[] = {
        {0.0, "0_00"}, {-0.0, "0_00"}, {4700, "4K70"}, {47000, "47K0"}, {470000, "470K"}, {-0.0047, "-4M70"},
        {9.9996, "10_00"}, {1000, "1K00"}, {1e-18, "1A00"}, {-1e6, "-1ME00"}, {-470e6, "-470ME"},
        {9.99e12, "9T99"}, {1.005, "1_00"}, {-999.4, "-999_"}, {1 - 1e-11, "1_00"}, // not "1000M"
    };
    for (const auto& r : rows) {
        char buf[8];
        EXPECT_STREQ(str_tosc_r(buf, r.value), r.text) << r.value;
    }
    for (double out_of_range : {1e13, 1e-19, HUGE_VAL, std::nan("")}) {
        char buf[8] = "keep";
        EXPECT_STREQ(str_tosc_r(buf, out_of_range), "keep") << out_of_range;
    }
    char* shared = str_tosc(4700);
    EXPECT_EQ(str_tosc(1e15), shared);
    EXPECT_STREQ(shared, "4K70"); // left as it was
}

// Random texts over the grammar's alphabet: a parse never reads past the string, a failure leaves
// the result alone, and the consumed prefix alone parses to the same count and bits. The stream
// readers store exactly when they succeed and leave a suffix of the text.
TEST(NumberGrammarFuzz, ConsumedPrefixParsesAlike)
{
    static const char alphabet[] = "0123456789012345678.+- eEdDmMgGkKuUpPnNaAfFtT%yYzZiInfl";
    std::mt19937 rng(99);
    for (int round = 0; round < 20000; ++round) {
        std::string s;
        for (int n = rng() % 12; n > 0; --n)
            s += alphabet[rng() % (sizeof alphabet - 1)];
        for (auto parse : {str_todouble, str_ctodouble}) {
            double v = Untouched<double>(), again = Untouched<double>();
            const int16_t n = parse(s.c_str(), &v);
            ASSERT_TRUE(n >= 0 && static_cast<std::size_t>(n) <= s.size()) << s;
            ASSERT_EQ(n != 0 ? parse(s.substr(0, n).c_str(), &again) : 0, n) << s;
            ASSERT_EQ(Bits(again), Bits(v)) << s;
        }
        for (auto get : {GetDouble, GetCDouble}) {
            const StreamResult r = Read(get, s);
            ASSERT_EQ(r.stored, !r.fail) << s;
            ASSERT_EQ(s.substr(s.size() - std::min(s.size(), r.rest.size())), r.rest) << s;
        }
    }
}
