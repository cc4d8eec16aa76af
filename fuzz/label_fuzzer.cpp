// Label text, index text and definitions that break their promises, through every entry point that takes a label.
#include <algorithm>
#include <climits>

#include "Driver_Records.h"
#include "Fuzz_Input.h"
#include "label/Label_Resolution.h"

namespace {

// Mostly characters that mean something, so that the fuzzer need not find them.
QString takeText(Fuzz_Input& input) {
    static const char alphabet[] = "ABCD[[[]]]...,,%%++-0123456789axzZ ";
    const int length = input.below(24);
    if (input.below(8) == 0) return QString::fromUtf8(input.takeBytes(length));
    QString text;
    for (int i = 0; i < length; ++i) {
        const int at = input.below(sizeof(alphabet) - 1);
        text.append(QLatin1Char(alphabet[at]));
        if (alphabet[at] == '%') text.append(QLatin1Char('%'));
    }
    return text;
}

QString takeName(Fuzz_Input& input) { return QString(QLatin1Char("ABCD"[input.below(4)])); }

int takeBound(Fuzz_Input& input) {
    static const int extremes[] = {INT_MIN, INT_MIN + 1, -1, INT_MAX - 1, INT_MAX, 0, 1, 65536};
    return input.below(8) == 0 ? extremes[input.below(8)] : input.below(24) - 4;
}

void takeDimensions(Fuzz_Input& input, Label_Type_Info& info) {
    static const int radixes[] = {10, 10, 10, 16, 2, 36, 1, 37, 0, INT_MIN};
    const int count = input.below(4);
    info.dimensionCount = static_cast<quint32>(count);
    if (input.below(6) == 0) info.dimensionCount = input.take32();
    info.dimensions << radixes[input.below(10)];
    for (int i = 0; i < count; ++i) {
        const int low = takeBound(input);
        info.dimensions << low
                        << (input.below(4) == 0 ? takeBound(input) : static_cast<int>(qint64(low) + input.below(12)));
    }
    if (input.below(8) == 0) info.dimensions.clear();
}

Label_Type_Info takeDefinition(Fuzz_Input& input, int depth) {
    Label_Type_Info info;
    info.name = takeName(input);
    const int code = input.below(18);
    info.typeFlags = static_cast<quint16>(code >= 14 ? StructTypeCode : code);
    info.address = input.chance() ? input.take8() : input.take32();
    if (input.below(3) == 0) info.typeFlags |= LabelIsArray;
    if (input.below(6) == 0) info.typeFlags |= LabelIsStructType;
    if (info.typeFlags & LabelIsArray) takeDimensions(input, info);
    if (depth == 0 || input.isEmpty()) return info;
    for (int i = input.below(3); i > 0; --i)
        info.members << takeDefinition(input, depth - 1);
    info.memberCount = input.below(6) == 0 ? input.take32() : static_cast<quint32>(info.members.size());
    if (code < StructTypeCode) return info;
    Label_Type_Info type = takeDefinition(input, depth - 1);
    if (input.below(6) != 0) type.typeFlags |= LabelIsStructType;
    if (input.below(6) != 0) info.elementType << type;
    return info;
}

// Every index anywhere in the definition is written in radix 10.
bool isDecimal(const Label_Type_Info& info) {
    if (!info.dimensions.isEmpty() && info.dimensions.first() != 10) return false;
    return std::all_of(info.members.begin(), info.members.end(), isDecimal) &&
           std::all_of(info.elementType.begin(), info.elementType.end(), isDecimal);
}

// Rewriting leaves a label alone when it fails, and has nothing left to do after it has succeeded.
void checkTemplate(const QString& label, int index, bool decimal) {
    QString once = label;
    const int result = get_label_address(once, index);
    REQUIRE(result == LabelOk || once == label);
    if (result != LabelOk || !decimal) return;
    QString twice = once;
    // (An array of no dimensions loses its brackets, and with them the way to be found again.)
    const int again = get_label_address(twice, index);
    if (again == LabelOk && twice != once)
        std::fprintf(stderr, "'%s' for %d: '%s', again '%s'\n", qPrintable(label), index, qPrintable(once),
                     qPrintable(twice));
    REQUIRE(again != LabelOk || twice == once);
}

// The bytes of the whole label when it is a sound elementary array or element, else -1.
qint64 soundBytes(const Label_Type_Info& info) {
    static const int sizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8, 8, 255, 255};
    const int code = info.typeFlags & LabelTypeMask;
    if (code < 1 || code > 11 || info.typeFlags & LabelIsStructType) return -1;
    if (!(info.typeFlags & LabelIsArray)) return sizes[code];
    double elements = 1;
    for (int d = 1; d + 1 < info.dimensions.size() && d < 2 * static_cast<qint64>(info.dimensionCount); d += 2)
        elements *= double(info.dimensions.at(d + 1)) - info.dimensions.at(d);
    return elements >= 1 && elements < 1e8 ? static_cast<qint64>(elements) * sizes[code] : -1;
}

void checkResolution(const QString& label) {
    ControlInformationM walked;
    const int result = get_label_address(label, walked);
    ControlInformationM cached;
    REQUIRE(get_label_address(label, cached) == result);
    if (result != LabelOk) return;
    REQUIRE(walked.typeCode == cached.typeCode && walked.address == cached.address && walked.typeCode <= 11);

    const QString name = label.left(1);
    const bool plain = label.size() == 1 || label.at(1) == QLatin1Char('[') || label.at(1) == QLatin1Char('.');
    if (!plain || !PLC_driver.labelTable.contains(name)) return;
    const Label_Type_Info& info = *PLC_driver.labelTable.constFind(name);
    const qint64 bytes = soundBytes(info);
    // An element never lies outside its array: a write there would change other data.
    if (bytes >= 0) REQUIRE(walked.address - info.address < bytes);
}

void callEntryPoints(Fuzz_Input& input, const QString& label, const QString& index) {
    const int count = input.below(16) == 0 ? INT_MIN : input.below(80) - 8;
    QByteArray out;
    const int found = GetRegisterData(label, 0, index, 0, &out, count);
    REQUIRE(found == 1 || out == QByteArray(qMax(0, 2 * qMax(count, -1)), '\0'));
    QByteArray value = input.takeBytes(input.below(32));
    REQUIRE(SetRegisterData(label, 0, index, 0, &value, count, 1, 2) == 0);

    RW_VAR once;
    once.label = label;
    once.labelIndex = index;
    once.length = count;
    REQUIRE((AddListOnceReadVar(&once) > 0) <= (found == 1));

    QList<HOST_VAR> definitions;
    HOST_VAR definition;
    definition.label = label;
    definition.labelIndex = index;
    definition.count = count;
    definitions << definition;
    REQUIRE((ReCreatReadVarList(&definitions) > 0) <= (found == 1));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz_Input input(data, size);
    forgetEverything();
    ComInfo settings;
    SetComInfo(&settings);
    settings.maxBytesPerRequest = input.below(40) - 2;
    settings.writeMode = input.below(3);

    QList<Label_Type_Info> definitions;
    for (int i = input.below(3); i >= 0; --i)
        definitions << takeDefinition(input, 3);
    PassVarName_2(&definitions);
    const bool allDecimal = std::all_of(definitions.begin(), definitions.end(), isDecimal);

    for (int i = 0; i < 3 && !input.isEmpty(); ++i) {
        const QString label = takeText(input);
        const QString index = input.chance() ? QString::number(input.below(40) - 4) : takeText(input);
        checkTemplate(label, index.toInt(), allDecimal);
        checkResolution(label);
        callEntryPoints(input, label, index);
    }
    return 0;
}
