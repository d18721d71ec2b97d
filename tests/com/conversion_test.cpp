#include "hosts/com/automation/variant_conversion.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "component/automation/convert.h"
#include "hosts/com/automation/error_info.h"
#include "hosts/com/automation/safe_array.h"
#include "tests/component/error_number_of.h"

namespace tof::com {
namespace {

VARIANT Raw(VARTYPE type) {
  VARIANT v;
  VariantInit(&v);
  V_VT(&v) = type;
  return v;
}

TEST(ComValues, GoThereAndBackUnchanged) {
  const std::vector<Variant> kValues = {Variant(),
                                        true,
                                        false,
                                        std::int16_t{-7},
                                        std::int32_t{123456},
                                        -1.5e-7,
                                        std::numeric_limits<double>::infinity(),
                                        "",
                                        "caf\u00E9 \u03BC \U0001D11E",
                                        Variant(Variant::Missing{}),
                                        Variant::DoubleArray({1.0, 2.0}),
                                        Variant::DoubleArray(std::vector<double>{3.0}, -4),
                                        Variant::Array({Variant("a"), Variant(2.0), Variant()})};
  for (const Variant& value : kValues) EXPECT_EQ(FromVariant(ToVariant(value).get()), value);
}

TEST(ComValues, OfOtherNumberTypesBecomeTheComponents) {
  VARIANT byte = Raw(VT_UI1);
  V_UI1(&byte) = 200;
  EXPECT_EQ(FromVariant(byte), Variant(std::int16_t{200}));
  VARIANT wide = Raw(VT_I8);
  V_I8(&wide) = 5'000'000'000;
  EXPECT_EQ(FromVariant(wide), Variant(5e9));
  VARIANT currency = Raw(VT_CY);
  V_CY(&currency).int64 = 12345;  // 1.2345
  EXPECT_EQ(FromVariant(currency), Variant(1.2345));
  VARIANT single = Raw(VT_R4);
  V_R4(&single) = 0.5F;
  EXPECT_EQ(FromVariant(single), Variant(0.5));
}

TEST(ComValues, ThatTheComponentHasNoTypeForConvertToNothing) {
  for (const VARTYPE type : {VT_NULL, VT_RECORD}) {
    VARIANT value = Raw(static_cast<VARTYPE>(type));
    EXPECT_EQ(FromVariant(value), Variant(Variant::Missing{})) << type;
    EXPECT_EQ(ErrorNumberOf([&] { ToDouble(FromVariant(value)); }), 13);
  }
  EXPECT_EQ(FromVariant(Raw(VT_DISPATCH)), Variant(Variant::Missing{}));
  EXPECT_EQ(FromVariant(Raw(VT_BYREF | VT_R8)), Variant(Variant::Missing{}));  // a null reference
}

TEST(ComValues, OfALongListAreTakenUpToTheNumberThatIsWanted) {
  SAFEARRAYBOUND bound{};
  bound.cElements = 5;
  bound.lLbound = 1;
  OwnedVariant bytes;
  const ArrayView view(NewArray(bytes, VT_UI1, {bound}), VT_UI1, 1);
  view.Elements<BYTE>()[1] = 200;
  EXPECT_EQ(FromVariant(bytes.get(), 2),
            Variant(Variant::Array(std::vector<Variant>{std::int16_t{0}, std::int16_t{200}}, 1)));
  const OwnedVariant doubles = ToVariant(BoundedArray<double>({1.0, 2.0, 3.0}));
  EXPECT_EQ(FromVariant(doubles.get(), 2), Variant(Variant::DoubleArray({1.0, 2.0})));
  EXPECT_EQ(FromVariant(doubles.get(), 4), Variant(Variant::DoubleArray({1.0, 2.0, 3.0})));
}

TEST(ComRecords, GoThereAndBackUnchanged) {
  PeakAttribsTable table({0, 1}, {0, 2});
  for (std::int32_t row = 0; row < 2; ++row) {
    for (std::int32_t m = 0; m < 3; ++m) {
      const double first = 100.0 * row + 10.0 * m;
      table(row, m) = {first,       first + 1.0, first + 2.0, first + 3.0,
                       first + 4.0, first + 5.0, first + 6.0, first + 7.0};
    }
  }
  EXPECT_EQ(PeakAttribsIn(ToVariant(table).get()), table);
  CalInfo info;
  info.unused0[3] = std::byte{9};
  info.time_ns = 1e12;
  info.PolyWeighting = -2;
  info.unused36[11] = std::byte{255};
  EXPECT_EQ(CalInfoIn(ToVariant(info).get()), info);
  const CoefficientRecord record{1, 2, 3, 4, 5, 6, 7, 8};
  EXPECT_EQ(CoefficientRecordIn(ToVariant(record).get()), record);
  const PeakRecord peak{.position = 1.0, .height = 2.0, .unused56 = 3.0};
  EXPECT_EQ(PeakRecordIn(ToVariant(peak).get()), peak);
  BoundedArray2D<double> values({1, 2}, {-1, 3});
  values(1, -1) = 5.0;
  values(2, 3) = 6.0;
  EXPECT_EQ(Doubles2DIn(ToVariant(values).get()), values);
}

TEST(ComRecords, LieInTheArrayAsPublished) {
  PeakAttribsTable table({0, 1}, {0, 1});
  table(0, 1).time = 26000.5;
  table(1, 1).abundance = 1234.0;
  const OwnedVariant variant = ToVariant(table);
  SAFEARRAY* array = ArrayIn(variant.get());
  ASSERT_EQ(SafeArrayGetDim(array), 3U);
  const auto element = [&](LONG row, LONG mass, LONG field) {
    LONG index[] = {row, mass, field};
    double value = 0.0;
    EXPECT_EQ(SafeArrayGetElement(array, index, &value), S_OK);
    return value;
  };
  EXPECT_EQ(element(0, 1, 3), 26000.5);
  EXPECT_EQ(element(1, 1, 5), 1234.0);
  EXPECT_EQ(element(0, 0, 3), 0.0);
}

TEST(ComRecords, OfAnotherFormAreErrors) {
  const OwnedVariant doubles = ToVariant(BoundedArray<double>({1.0, 2.0}));
  EXPECT_EQ(ErrorNumberOf([&] { CoefficientRecordIn(doubles.get()); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { CalInfoIn(doubles.get()); }), 13);
  EXPECT_EQ(ErrorNumberOf([&] { PeakAttribsIn(doubles.get()); }), 13);
  EXPECT_EQ(ErrorNumberOf([&] { DoublesIn(OwnedVariant::Of(1.0).get()); }), 13);
}

TEST(ComErrors, KeepTheirNumbers) {
  for (const std::int32_t number : {1, 13, 429, 4711, 65535, -1, -666, -822}) {
    EXPECT_TRUE(FAILED(ResultOf(number))) << number;
    EXPECT_EQ(NumberOf(ResultOf(number)), number);
  }
  EXPECT_EQ(ResultOf(13), static_cast<HRESULT>(0x800A000D));
  EXPECT_EQ(NumberOf(DISP_E_TYPEMISMATCH), 13);
  EXPECT_EQ(NumberOf(E_FAIL), E_FAIL);
  EXPECT_EQ(ResultOf(70000), E_FAIL);
  EXPECT_EQ(ResultOf(0), E_FAIL);
}

struct RecordCase {
  const char* name;
  WORD code;
  SCODE result;
  std::int32_t number;
  std::string description;
};

TEST(ComErrors, OfARecordWithoutATextGetTheUsualOneOfTheirNumber) {
  for (const RecordCase& row :
       {RecordCase{"an empty record", 0, S_OK, 440, "Automation error"},
        RecordCase{"a number", 13, S_OK, 13, "Type mismatch"},
        RecordCase{"a number that has no text", 5000, S_OK, 5000, "Automation error"},
        RecordCase{"a result that is a number", 0, ResultOf(61), 61, "Disk full"},
        RecordCase{"a result that means one", 0, DISP_E_OVERFLOW, 6, "Overflow"},
        RecordCase{"another result", 0, E_FAIL, E_FAIL, TextOfResult(E_FAIL)}}) {
    EXCEPINFO record{};
    record.wCode = row.code;
    record.scode = row.result;
    const AutomationError error = TakeError(record);
    EXPECT_EQ(error.number(), row.number) << row.name;
    EXPECT_EQ(error.description(), row.description) << row.name;
  }
}

TEST(ComErrors, OfAResultAloneGetTheUsualTextOfTheirNumber) {
  EXPECT_EQ(ErrorOf(DISP_E_TYPEMISMATCH).description(), "Type mismatch");
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(ErrorLeftBy(ResultOf(13)).description(), "Type mismatch");
  EXPECT_EQ(ErrorOf(E_FAIL).description(), TextOfResult(E_FAIL));
}

TEST(ComErrors, AreLeftAndFoundAsErrorInformation) {
  const HRESULT result = Report(AutomationError(76, "Path not found", ""), GUID_NULL, "the source");
  const AutomationError found = ErrorLeftBy(result);
  EXPECT_EQ(found.number(), 76);
  EXPECT_EQ(found.description(), "Path not found");
  EXPECT_EQ(found.source(), "the source");
}

}  // namespace
}  // namespace tof::com
