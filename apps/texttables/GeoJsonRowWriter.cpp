// One feature collection as RFC 7946 has it, with a feature a line.
#include <cmath>

#include "JsonValueText.h"
#include "NumberText.h"
#include "RowWriter.h"
#include "host/DataCore/LatLongFormat.h"
#include "platform/OleText.h"

namespace TextTables {

namespace {

constexpr double kGreatestLatitude = 90.0;

// A position in degrees, longitude first.
struct Position {
  double x = 0;
  double y = 0;
};

// The row's positions of one pair of numbers.
class PointSource {
 public:
  explicit PointSource(const PointColumns& columns) : columns_(columns) {}

  // Nothing where one of the numbers is blank.
  std::optional<Position> Of(const quenra::HostFieldValue* slots) {
    const VARIANT& first = slots[columns_.first].value;
    const VARIANT& second = slots[columns_.second].value;
    if (first.vt != VT_R8 || second.vt != VT_R8) return std::nullopt;
    if (!std::isfinite(first.dblVal) || !std::isfinite(second.dblVal)) return std::nullopt;
    if (columns_.texts && IsLatitudeFirst(slots, first.dblVal, second.dblVal))
      return Position{second.dblVal, first.dblVal};
    return Position{first.dblVal, second.dblVal};
  }

 private:
  // Of two columns either may hold the latitude. The host's reader of coordinates, which has
  // recognised the columns, knows the letters and labels of the texts; where they say nothing a
  // value beyond 90 degrees is no latitude, and the order of the rows before holds.
  bool IsLatitudeFirst(const quenra::HostFieldValue* slots, double first, double second) {
    if (std::fabs(first) > kGreatestLatitude) return latitudeFirst_ = false;
    if (std::fabs(second) > kGreatestLatitude) return latitudeFirst_ = true;
    const std::u16string_view a = TextOf(slots[columns_.texts->first].value);
    const std::u16string_view b = TextOf(slots[columns_.texts->second].value);
    double x = 0;
    double y = 0;
    if (Read(u"", a, u"; ", b, x, y)) {
      if (first != second && x == second && y == first) latitudeFirst_ = true;
      if (first != second && x == first && y == second) latitudeFirst_ = false;
      return latitudeFirst_;
    }
    // One text cannot say all that two can, but with labels it can, and only those that agree with
    // the letters are read.
    const bool mayBe = Read(u"Lat: ", a, u"; Lon: ", b, x, y);
    const bool mayBeTurned = Read(u"Lon: ", a, u"; Lat: ", b, x, y);
    if (mayBe != mayBeTurned) latitudeFirst_ = mayBe;
    return latitudeFirst_;
  }

  // Reads the two texts as one, with what is put in front of each.
  bool Read(std::u16string_view beforeA, std::u16string_view a, std::u16string_view beforeB,
            std::u16string_view b, double& x, double& y) const {
    std::u16string both(beforeA);
    both.append(a).append(beforeB).append(b);
    return format_.ParseLatLong(both, 0, x, y);
  }

  static std::u16string_view TextOf(const VARIANT& value) {
    return value.vt == VT_BSTR ? ViewOf(value.bstrVal) : std::u16string_view();
  }

  PointColumns columns_;
  quenra::LatLongFormat format_;
  bool latitudeFirst_ = true;  // what is usual
};

class GeoJsonRowWriter : public RowWriter {
 public:
  GeoJsonRowWriter(Output& output, const std::vector<PointColumns>& points)
      : RowWriter(output), sources_(points.begin(), points.end()) {}

  void Begin(std::span<const OutputColumn> columns, const TableFields& fields) override {
    RowWriter::Begin(columns, fields);
    for (const OutputColumn& column : columns_) keys_.Add(NameOf(column));
    output_.Append(R"({"type":"FeatureCollection","features":[)");
  }

  void Write(const quenra::HostFieldValue* slots) override {
    output_.Append(first_ ? "\n" : ",\n");
    first_ = false;
    output_.Append(R"({"type":"Feature","geometry":)");
    AppendGeometry(slots);
    output_.Append(R"(,"properties":{)");
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (i > 0) output_.Append(',');
      output_.Append(keys_[i]);
      AppendJsonValue(output_, slots[columns_[i].slot].value, columns_[i].type);
    }
    output_.Append("}}");
  }

  void End() override { output_.Append("\n]}\n"); }

 private:
  void AppendGeometry(const quenra::HostFieldValue* slots) {
    positions_.clear();
    for (PointSource& source : sources_)
      if (const auto position = source.Of(slots)) positions_.push_back(*position);
    if (positions_.empty()) return output_.Append("null");
    // Tables with several points a row have them in every feature, so that all features are of
    // one kind, whatever is blank.
    const bool several = sources_.size() > 1;
    output_.Append(several ? R"({"type":"MultiPoint","coordinates":[)"
                           : R"({"type":"Point","coordinates":)");
    for (std::size_t i = 0; i < positions_.size(); ++i) {
      output_.Append(i == 0 ? "[" : ",[");
      AppendShortest(output_, positions_[i].x);
      output_.Append(',');
      AppendShortest(output_, positions_[i].y);
      output_.Append(']');
    }
    output_.Append(several ? "]}" : "}");
  }

  std::vector<PointSource> sources_;
  std::vector<Position> positions_;
  JsonKeys keys_;
  bool first_ = true;
};

}  // namespace

std::unique_ptr<RowWriter> MakeGeoJsonRowWriter(Output& output,
                                                const std::vector<PointColumns>& points) {
  return std::make_unique<GeoJsonRowWriter>(output, points);
}

}  // namespace TextTables
