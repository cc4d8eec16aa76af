// Raw values and shown ones: what people see, what they may type, and what leads back to the same bytes.
#include "values/Shown_Value.h"

#include <random>
#include <stdexcept>

#include <gtest/gtest.h>

#include "text/Hex.h"
#include "values/Comparison.h"
#include "values/Value_Codec.h"

namespace vornex {
namespace {

// The form of a label as a file has it, from its keys.
Value_Form formOf(const std::string& keys) {
    const Label_File file =
        parseLabelFile("{\"format\": 1, \"labels\": [{\"name\": \"A\", \"at\": 0, " + keys + "}]}", "f");
    Value_Form form(View::U8, 0);
    forEachLeaf(file, [&form](const Leaf& leaf) {
        form = Value_Form(leaf);
        return false;
    });
    return form;
}

const char Tenths[] = R"("type": "INT", "scale": 0.1)";
const char Current[] = R"("type": "UINT", "scale": 0.0005787037037037037, "offset": 4, "unit": "mA")";
const char Mode[] = R"("type": "UINT", "states": {"0": "off", "1": "auto", "7": "by hand"})";
const char Flag[] = R"("type": "BOOL", "states": {"0": "closed", "1": "open"})";

TEST(Shown_Value, isTheShortestThatLeadsBack) {
    const struct {
        const char* keys;
        const char* bytes;
        const char* shown;
    } rows[] = {
        {Tenths, "D2 04", "123.4"},
        {Tenths, "03 00", "0.3"},  // 3 x 0.1 is 0.30000000000000004
        {Tenths, "FF FF", "-0.1"},
        {R"("type": "INT", "scale": 0.1, "decimals": 2)", "0A 00", "1.00"},
        {R"("type": "INT", "scale": 0.25)", "03 00", "0.75"},
        {R"("type": "INT", "scale": 0.25, "decimals": 1)", "03 00", "0.8"},
        {R"("type": "INT", "scale": 0.01, "decimals": 1)", "7B 00", "1.23"},  // 1.2 would be another value
        {R"("type": "INT", "scale": 9)", "1D 00", "261"},
        {R"("type": "INT", "scale": -1, "offset": 100)", "64 00", "0"},
        {R"("type": "WORD", "scale": 0.5)", "03 00", "1.5"},
        {Current, "00 36", "12"},
        {Current, "01 36", "12.0006"},
        {R"("type": "ULINT", "scale": 0.5)", "01 00 00 00 00 00 20 00", "raw(9007199254740993)"},
        {R"("type": "ULINT", "offset": -1)", "00 00 00 00 00 00 00 00", "-1"},
        {R"("type": "INT", "scale": 1e-9, "offset": 1e12)", "05 00", "raw(5)"},
        {R"("type": "REAL", "scale": 0.1)", "00 00 80 3F", "0.1"},
        {R"("type": "REAL", "decimals": 2)", "00 00 60 40", "3.50"},
        {R"("type": "REAL", "decimals": 1)", "C3 F5 48 40", "3.14"},
        {R"("type": "REAL", "scale": 3)", "00 00 80 7F", "inf"},
        {R"("type": "REAL", "scale": 3)", "01 00 A0 7F", "nan(0x7FA00001)"},
        {R"("type": "LREAL", "scale": 1e200)", "00 00 00 00 00 00 F0 7E", "raw(2.7430620343968443e+303)"},
        {Mode, "01 00", "auto"},
        {Mode, "02 00", "2"},
        {R"("type": "DINT", "view": "u16", "scale": 0.1)", "01 00 02 00", "[0.1, 0.2]"},
        {Flag, "01", "open"},
        {R"("type": "BOOL", "states": {"0": "true"})", "01", "raw(1)"},  // "true" is taken for 0
        {R"("type": "BYTE", "states": {"255": "all"})", "FF", "all"},
    };
    for (const auto& row : rows) {
        const Value_Form form = formOf(row.keys);
        const std::string bytes = bytesOfHex(row.bytes);
        const std::string shown = shownOf(form, bytes).shown();
        EXPECT_EQ(shown, row.shown) << row.keys << " " << row.bytes;
        EXPECT_EQ(hexBytes(bytesOfShown(form, shown)), row.bytes) << row.keys << " " << shown;
    }
}

TEST(Shown_Value, takesWhatPeopleTypeOrSaysWhyNot) {
    const struct {
        const char* keys;
        const char* typed;
        const char* bytes;  // empty: refused
        const char* refusal;
    } rows[] = {
        {Tenths, "12.34", "7B 00", ""},  // the nearest
        {Tenths, "3276.7", "FF 7F", ""},
        {Tenths, "3276.8", "", "'3276.8' is out of range: -3276.8 to 3276.7"},
        {Tenths, "1e99", "", "out of range"},
        {Tenths, "inf", "", "out of range"},
        {Tenths, "raw(5)", "05 00", ""},
        {Tenths, "raw(99999)", "", "'99999' is not a whole number from -32768 to 32767"},
        {Tenths, "ten", "", "'ten' is not a number"},
        {Current, "20", "00 6C", ""},
        {R"("type": "REAL", "scale": 1e-30)", "1e10", "", "out of range"},
        {Mode, "by hand", "07 00", ""},
        {Mode, "3", "03 00", ""},
        {Mode, "atuo", "", "neither a number nor one of the states off, auto, by hand; did you mean 'auto'?"},
        {Flag, "open", "01", ""},
        {Flag, "off", "00", ""},
        {Flag, "opne", "", "did you mean 'open'?"},
        {R"("type": "INT", "unit": "bar")", "raw(5)", "05 00", ""},
        {R"("type": "INT", "scale": 0.1, "max": 0.3, "min": -0.3)", "0.3", "03 00", ""},
        {R"("type": "INT", "scale": 0.1, "max": 0.3, "unit": "bar")", "0.4", "",
         "'0.4' is above the most of what may be written, 0.3 bar"},
        {R"("type": "INT", "scale": 0.1, "min": -0.3)", "raw(-4)", "", "'-0.4' is below the least"},
        {R"("type": "REAL", "max": 5)", "nan", "", "above the most"},
        {R"("type": "DINT", "view": "u16", "max": 5)", "[1, 6]", "", "'6' is above the most"},
    };
    for (const auto& row : rows) {
        const Value_Form form = formOf(row.keys);
        std::string bytes, refusal;
        try {
            bytes = bytesOfShown(form, row.typed);
            checkLimits(form, bytes);
        } catch (const std::invalid_argument& reason) {
            bytes.clear();
            refusal = reason.what();
        }
        EXPECT_EQ(hexBytes(bytes), row.bytes) << row.keys << " " << row.typed << ": " << refusal;
        EXPECT_NE(refusal.find(row.refusal), std::string::npos) << row.typed << ": " << refusal;
        EXPECT_EQ(refusal.empty(), *row.refusal == '\0') << row.typed << ": " << refusal;
    }
}

TEST(Shown_Value, leadsBackWhateverScaleAndOffset) {
    std::mt19937_64 random(1);
    const View views[] = {View::U8,  View::S16, View::U16, View::S32, View::U64,
                          View::S64, View::F32, View::F64, View::Hex};
    for (int i = 0; i < 20000; ++i) {
        const View view = views[i % std::size(views)];
        const std::uint32_t bytes = view == View::Hex ? 4 : viewEntry(view).width;
        auto meaning = std::make_shared<Meaning>();
        meaning->scale = std::ldexp(static_cast<double>(random() % 2000 + 1) / (random() % 3 ? 10 : 7),
                                    static_cast<int>(random() % 40) - 20);
        if (random() % 2)
            meaning->offset =
                std::ldexp(static_cast<double>(random() % 2001) - 1000, static_cast<int>(random() % 60) - 30);
        if (random() % 2) meaning->decimals = static_cast<int>(random() % 5);
        std::string raw(bytes, '\0');
        for (char& byte : raw)
            byte = static_cast<char>(random());
        const Value_Form form(view, bytes, meaning);
        const std::string shown = shownOf(form, raw).shown();
        ASSERT_EQ(hexBytes(bytesOfShown(form, shown)), hexBytes(raw))
            << viewName(view) << " " << shown << " scale " << *meaning->scale;
    }
}

TEST(Shown_Value, tellsWhatIsNotNormal) {
    const Value_Form form = formOf(R"("type": "INT[1..2]", "scale": 0.1, "low": 0.3, "high": 2)");
    const std::pair<int, const char*> rows[] = {{2, "low"}, {3, ""}, {20, ""}, {21, "high"}};
    for (const auto& [raw, band] : rows)
        EXPECT_EQ(bandOf(form, raw), band) << raw;
    EXPECT_EQ(bandOf(form, std::vector<Value>{5, 99, 0}), "high");
    EXPECT_EQ(bandOf(form, Value()), "");
}

TEST(Comparison, comparesStatesByNameAndNumber) {
    const struct {
        const char* comparison;
        int raw;
        bool met;
    } rows[] = {
        {"A==auto", 1, true}, {"A!=auto", 1, false}, {"A>=auto", 7, true}, {"A==7", 7, true}, {"A==off", 1, false}};
    for (const auto& row : rows) {
        Comparison comparison = parseComparison(row.comparison);
        fitComparison(comparison, formOf(Mode));
        ASSERT_TRUE(comparison.ofRaw);
        EXPECT_EQ(comparison.metBy(row.raw), row.met) << row.comparison;
    }
    Comparison unknown = parseComparison("A==atuo");
    EXPECT_THROW(fitComparison(unknown, formOf(Mode)), std::invalid_argument);
}

}  // namespace
}  // namespace vornex
