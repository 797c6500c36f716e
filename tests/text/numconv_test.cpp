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
#include <random>
#include <sstream>
#include <string>
#include <tuple>

// The bits of a double, or of a float in the low 32 bits.
template <class Real> static uint64_t Bits(Real v)
{
    uint64_t u = 0;
    std::memcpy(&u, &v, sizeof v);
    return u;
}

// A NaN with a payload that no arithmetic produces (0 * inf gives the target's default NaN, which on
// ARM has the bits of NAN): a result still holding it was not written.
const double kUntouched = [] {
    const uint64_t bits = 0x7FF80000DEADBEEFull;
    double d;
    std::memcpy(&d, &bits, sizeof d);
    return d;
}();

// What a stream reader did: the bits of its result, whether it failed, whether it met the end, and
// what it left unread.
using StreamResult = std::tuple<uint64_t, bool, bool, std::string>;
template <class Real> static StreamResult Read(std::istream& (*get)(std::istream&, Real&), const char* s)
{
    std::istringstream in(s);
    Real v = static_cast<Real>(kUntouched);
    get(in, v);
    const bool fail = in.fail(), eof = in.eof();
    std::string rest;
    in.clear();
    std::getline(in, rest, '\0');
    return {Bits(v), fail, eof, rest};
}

// Parser 'i' str_toint, 'e' str_todouble (engineering), 's' str_ctodouble (SI), 'f' str_tofloat_
// (engineering, float). A count of 0: the parser fails and leaves the result alone.
TEST(StringParserTest, BothDialectsBitExact)
{
    const struct { char parser; const char* in; int count; uint64_t bits; } rows[] = {
        {'i', "  -42x", 5, 0xFFFFFFD6}, {'i', "+", 0, 0}, {'i', "4294967297", 10, 1}, // unsigned 32-bit sum
        {'i', "1234567890123456", 16, 1015724736}, {'i', "12345678901234567", 0, 0}, {'i', nullptr, 0, 0},
        {'e', "4.7k", 4, 0x40B25C0000000000}, {'e', "10mEg", 5, 0x416312D000000000}, {'e', "-0", 2, Bits(-0.0)},
        {'e', "1me", 2, 0x3F50624DD2F1A9FC}, {'e', "1mil", 2, 0x3F50624DD2F1A9FC}, {'e', ".5x", 2, 0x3FE0000000000000},
        {'e', "1e-3", 4, 0x3F50624DD2F1A9FD}, // 0.1 * 0.1 * 0.1, not the double nearest 0.001
        {'e', "4D-2", 4, 0x3FA47AE147AE147C}, {'e', "1e 3", 4, 0x408F400000000000}, {'e', "1e309", 5, Bits(HUGE_VAL)},
        {'e', "5e4294967296", 12, 0x4014000000000000}, {'e', "  +3.3n", 7, 0x3E2C58C6D8A67BA9},
        // Micro is 1e-6 + 5 ulps in the string parsers (exactly 1e-6 in the stream readers).
        {'e', "1.5U", 4, 0x3EB92A737110E45B}, {'e', "2a", 2, 0x3C42725DD1D243AC}, {'e', "2t", 2, 0x427D1A94A2000000},
        // Fused multiply-add from the least significant digit: neither strtod's result nor that of a
        // separate multiply and add. 33 digits count as none.
        {'e', "0.98259791907483378876232860", 28, 0x3FEF717130F168FD},
        {'e', "11111111111111111111111111111111", 32, 0x466187BDF63DB730},
        {'e', "111111111111111111111111111111111.5", 35, 0x3FE0000000000000},
        {'e', "111111111111111111111111111111111", 0, 0}, {'e', "-inf", 4, 0xFFEFFFFFFFFFFFFF},
        {'e', "+min", 4, 0x0010000000000000}, {'e', "inf ", 0, 0}, {'e', "INF", 0, 0},
        {'e', ".", 0, 0}, {'e', "5e", 0, 0}, {'e', nullptr, 0, 0},
        {'s', "10M", 3, 0x416312D000000000}, {'s', "1meg", 2, 0x3F50624DD2F1A9FC}, {'s', "5%", 2, 0x3FA999999999999A},
        {'s', "3u", 2, 0x3EC92A737110E45B}, {'s', "1P", 2, 0x430C6BF526340000}, {'s', "1p", 2, 0x3D719799812DEA11},
        {'s', "1Y", 2, 0x44EA784379D99DB4}, {'s', "1z", 2, 0x3B92E3B40A0E9B4F}, {'s', "1K", 2, 0x408F400000000000},
        {'s', "1g", 1, 0x3FF0000000000000}, {'s', "2E3", 3, 0x409F400000000000}, {'s', "2E", 0, 0}, // never exa
        {'f', "4.7k", 4, 0x4592E000}, {'f', "1e-3", 4, 0x3A83126F}, {'f', "9871463934", 10, 0x501318A6},
        {'f', "170362714050", 12, 0x521EA9A2}, {'f', "1.5u", 4, 0x35C9539C}, {'f', "-min", 4, 0x80800000},
        {'f', "0.77777777777777777777777777777777", 34, 0x3F471C71}, {'f', "inf", 3, 0x7F7FFFFF},
    };
    for (const auto& r : rows) {
        double d = kUntouched;
        float f = static_cast<float>(kUntouched);
        int i = -7;
        const auto bits = [&]() -> uint64_t {
            return r.parser == 'i' ? static_cast<uint32_t>(i) : r.parser == 'f' ? Bits(f) : Bits(d);
        };
        const uint64_t before = bits();
        const int count = r.parser == 'i'   ? str_toint(r.in, &i)
                          : r.parser == 'f' ? str_tofloat_(r.in, &f)
                                            : (r.parser == 'e' ? str_todouble : str_ctodouble)(r.in, &d);
        EXPECT_EQ(count, r.count) << r.parser << r.in;
        EXPECT_EQ(bits(), r.count != 0 ? r.bits : before) << r.parser << r.in;
    }
}

// Reader 'e' GetDouble (engineering), 's' GetCDouble (SI). A NaN value: the reader fails.
TEST(GetDoubleTest, StreamsConsumeAndLeave)
{
    const std::string big = "1" + std::string(199, '0'); // 127 digits kept, the rest read and dropped
    const std::string long_exponent = "1e" + std::string(31, '0') + "5"; // 31 exponent digits at most
    const double fails = NAN;
    const struct { char reader; const char* in; double value; bool eof; const char* rest; } rows[] = {
        {'e', "3MIL", 3 * 2.54e-5, false, ""}, {'e', "2meg x", 2e6, false, " x"}, {'e', "3MEL", fails, false, ""},
        {'e', "3MX", 3e-3, false, "X"}, {'e', "3MEX", 3e-3, false, "X"}, {'e', "3MI", 3e-3, true, ""},
        {'e', "3M", 3e-3, true, ""}, {'e', "2.5", 2.5, true, ""}, {'e', "1.5u", 1.5 * 1e-6, false, ""}, // exact micro
        {'e', "-.5 ", -0.5, false, " "}, {'e', "5.x", 5, false, "x"}, {'e', "- 5", fails, false, " 5"},
        {'e', ". ", fails, false, " "}, {'e', "", fails, true, ""}, {'e', "1e999999", HUGE_VAL, false, ""},
        {'e', "inf", fails, false, "f"}, // two characters go, then failure: no special words
        {'e', "1e3", 1000, false, ""},   // an exponent clears the state, eofbit too
        {'e', "1e-3", 1.0 / 1000, false, ""}, {'e', "1d 3;", 1000, false, ";"}, {'e', "3ex", fails, false, ""},
        {'e', "3e", fails, true, ""}, {'e', "4e+ ", 4, false, " "}, {'e', long_exponent.c_str(), 1, false, "5"},
        {'e', big.c_str(), 1e126, true, ""}, {'s', "10M", 1e7, false, ""}, {'s', "1meg", 1e-3, false, "eg"},
        {'s', "5%", 5 * 0.01, false, ""}, {'s', "1P1p", 1e15, false, "1p"}, {'s', "2E5", 2e5, false, ""},
        {'s', "2E", fails, true, ""}, {'s', "2U", 2, false, "U"},
    };
    for (const auto& r : rows) {
        const bool fail = std::isnan(r.value);
        EXPECT_EQ(Read(r.reader == 'e' ? GetDouble : GetCDouble, r.in),
                  std::make_tuple(Bits(fail ? kUntouched : r.value), fail, r.eof, std::string(r.rest)))
            << r.reader << r.in;
    }
    EXPECT_EQ(std::get<0>(Read(GetFloat, "0.1u")), Bits(static_cast<float>(0.1 * 1e-6))); // a narrowed double
    EXPECT_EQ(std::get<0>(Read(GetCFloat, "2.5k")), Bits(2500.0f));
}

// Integer writers (fill before the sign, prefix before the fill) and the scaled short form.
TEST(WriterTest, IntegersAndScaledShortForm)
{
    char buf[32], sc[8];
    const auto tosc = [&](double v) { return str_tosc_r(std::strcpy(sc, "keep"), v); };
    const struct { std::string got, expect; } rows[] = { // copied at once: each row writes into buf
        {str_int2str10(buf, 20, -5, 4, '0'), "00-5"}, {str_int2str10(buf, 20, INT_MIN, 0, 0), "-2147483648"},
        {str_uint2str10(buf, 20, 42, 6, '\0'), "42"},
        {str_ulong2str10(buf, 32, ULONG_MAX, 0, 0), std::to_string(ULONG_MAX)},
        {str_long2str10(buf, 32, LONG_MIN, 0, 0), std::to_string(LONG_MIN)},
        {str_longlong2str10(buf, 32, LLONG_MIN, 0, 0), "-9223372036854775808"},
        {str_ulonglong2str10(buf, 32, ULLONG_MAX, 0, 0), "18446744073709551615"},
        {str_int2strradix(buf, 20, 255, 4, '0', 16), "0x00ff"}, {str_int2strradix(buf, 20, 0, 0, 0, 8), "00"},
        {str_int2strradix(buf, 20, 10, 6, ' ', 2), "0b  1010"},
        {str_long2strradix(buf, 32, -1L, 0, 0, 16), "0x" + std::string(2 * sizeof(long), 'f')},
        {str_longlong2strradix(buf, 32, -1LL, 0, 0, 8), "01777777777777777777777"},
        {tosc(0.0), "0_00"}, {tosc(-0.0), "0_00"}, {tosc(4700), "4K70"}, {tosc(47000), "47K0"}, {tosc(470000), "470K"},
        {tosc(-0.0047), "-4M70"}, {tosc(9.9996), "10_00"}, {tosc(1000), "1K00"}, {tosc(1e-18), "1A00"},
        {tosc(-1e6), "-1ME00"}, {tosc(-470e6), "-470ME"}, {tosc(9.99e12), "9T99"}, {tosc(1.005), "1_00"},
        {tosc(-999.4), "-999_"}, {tosc(1 - 1e-11), "1_00"}, {tosc(1e13), "keep"}, {tosc(1e-19), "keep"},
        {tosc(HUGE_VAL), "keep"}, {tosc(NAN), "keep"}, // out of range: nothing written
    };
    for (const auto& r : rows)
        EXPECT_EQ(r.got, r.expect) << "row " << &r - rows;
    EXPECT_EQ(str_uint2str10(buf, 10, 123, 0, '\0'), buf + 6); // the text ends at buf[size-1]
    EXPECT_EQ(buf[9], '\0');
    char* shared = str_tosc(4700);
    EXPECT_EQ(str_tosc(1e15), shared);
    EXPECT_STREQ(shared, "4K70"); // left as it was
}

TEST(WriterDeathTest, RadixOtherThan2_8_16Aborts)
{
    char buf[32];
    EXPECT_DEATH(str_int2strradix(buf, 32, 255, 0, '\0', 10), "");
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
            double v = kUntouched, again = kUntouched;
            const int16_t n = parse(s.c_str(), &v);
            ASSERT_TRUE(n >= 0 && static_cast<std::size_t>(n) <= s.size()) << s;
            ASSERT_EQ(n != 0 ? parse(s.substr(0, n).c_str(), &again) : 0, n) << s;
            ASSERT_EQ(Bits(again), Bits(v)) << s;
        }
        for (auto get : {GetDouble, GetCDouble}) {
            const auto r = Read(get, s.c_str()); // bits, fail, eof, rest
            ASSERT_EQ(std::get<0>(r) != Bits(kUntouched), !std::get<1>(r)) << s;
            ASSERT_EQ(s.substr(s.size() - std::min(s.size(), std::get<3>(r).size())), std::get<3>(r)) << s;
        }
    }
}
