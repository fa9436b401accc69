// Coordinates out of texts, and the refusal of texts that are none: the columns of a table that
// hold ordinary words go through it as well.

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "Throughput.h"
#include "host/DataCore/LatLongFormat.h"

namespace {

using Texts = std::vector<std::u16string_view>;

struct TextSet {
  const char* name;
  Texts texts;
};

// As many different ones as keep a processor from learning them by heart.
Texts Positions() {
  constexpr int kCount = 2000;
  static std::deque<std::u16string> positions;
  const auto digits = [](std::uint32_t number, std::size_t width) {
    std::u16string text;
    for (; number > 0 || text.size() < width; number /= 10)
      text.insert(text.begin(), static_cast<char16_t>(u'0' + number % 10));
    return text;
  };
  const auto angle = [&](std::uint32_t seconds, char16_t hemisphere) {
    return digits(seconds / 3600, 1) + u'\u00B0' + digits(seconds / 60 % 60, 2) + u'\'' +
           digits(seconds % 60, 2) + u'"' + hemisphere;
  };
  Texts texts;
  std::uint32_t random = 1;
  const auto below = [&](std::uint32_t limit) {
    random = random * 1664525 + 1013904223;
    return (random >> 8) % limit;
  };
  for (int i = 0; i < kCount; ++i) {
    const std::u16string latitude = angle(below(324000), below(2) == 0 ? u'N' : u'S');
    positions.push_back(latitude + u' ' + angle(below(648000), below(2) == 0 ? u'E' : u'W'));
    texts.push_back(positions.back());
  }
  return texts;
}

const TextSet kAccepted[] = {
    {"table", Positions()},
    {"marks", {u"40°26'46\"N 79°58'56\"W", u"5°07'09\"S 178°35'29\"E", u"56°34'21\"N 8°03'00\"E"}},
    {"decimal_seconds", {u"40°26'46.302\"N 79°58'55.903\"W", u"51° 28' 40.12\" N, 0° 0' 5.31\" W"}},
    {"typographic", {u"40° 26′ 46″ N, 79° 58′ 56″ W", u"N 40º 26’ 46” W 79º 58’ 56”"}},
    {"long_words", {u"Latitude: 40 deg 26 min 46 sec North, Longitude: 79 deg 58 min 56 sec West"}},
    {"words", {u"40 deg 26 min 46 sec N, 79 deg 58 min 56 sec W", u"40d26m46sN 79d58m56sW"}},
    {"minutes", {u"40°26.767'N 79°58.933'W", u"40° 26.767', -79° 58.933'"}},
    {"decimal_degrees", {u"40.446195, -79.982195", u"40.446195N 79.982195W"}},
    {"labelled", {u"Lat: 40.123456, Lon: -74.123456", u"Latitude 40.123 Longitude -74.123"}},
    {"scripts", {u"55°45′07″ с. ш. 37°36′56″ в. д.", u"北緯35度41分22秒 東経139度41分30秒"}},
    {"fields", {u"4042.767,N,07400.358,W", u"3351.522,S,15112.900,E"}},
    {"steered", {u"\u202A40.7128\u202C,\u200F -74.0060\uFEFF"}},
    {"standards",
     {u"geo:37.786971,-122.399677", u"POINT(-122.4194 37.7749)", u"+401213.1-0750015.1/"}},
};

const TextSet kRefused[] = {
    {"names", {u"river bridge", u"Zürich", u"street of the south harbour", u"north meadow"}},
    {"hemisphere_words", {u"North Quay 12", u"South 5 Bridge, East", u"West 34th Street"}},
    {"numbers", {u"12 34", u"24.0, 26.0", u"1,234,567.89", u"+1 555 123 4567"}},
    {"dates", {u"2024-02-29 12:30:45", u"29.02.2024", u"12:30:45, 13:30:45"}},
    {"marks", {u"40°26'76\"N 79°58'56\"W", u"40°26'46\"N 79°58'56\"N", u"5' 11\" by 6' 2\""}},
    {"out_of_range", {u"95°26'46\"N 79°58'56\"W", u"40°26'46\"N 279°58'56\"W"}},
    {"nearly", {u"40°26'46\"N 79°58'56\"W, old harbour", u"40.446195, -79.982195 (approx.)"}},
    {"long",
     {u"12 river bridge harbour meadow signal north lower quarry station mill valley",
      u"59 meadow lane, next to the mill, north of the old station: ask for the warden, who "
      u"has the keys to the depot and to the shelter"}},
};

// What a cell costs when it is read: recognised, and read under its column's format.
void Parse(benchmark::State& state, const Texts& texts) {
  const quenra::LatLongFormat latLong;
  std::vector<std::int32_t> formats;
  for (const std::u16string_view text : texts) {
    std::int32_t format = 0;
    if (!latLong.IsLatLong(text, format)) return state.SkipWithError("a text is no coordinate");
    formats.push_back(format);
  }
  double x = 0;
  double y = 0;
  for (auto iteration : state) {
    for (std::size_t i = 0; i < texts.size(); ++i) {
      benchmark::DoNotOptimize(latLong.ParseLatLong(texts[i], formats[i], x, y));
      benchmark::DoNotOptimize(x + y);
    }
  }
  state.counters["cells/s"] =
      benchmark::Counter(static_cast<double>(static_cast<std::int64_t>(state.iterations()) *
                                             static_cast<std::int64_t>(texts.size())),
                         benchmark::Counter::kIsRate);
}

// Whether a text is a coordinate, asked of every text of the scanned rows.
template <bool kAccept>
void Recognise(benchmark::State& state, const Texts& texts) {
  const quenra::LatLongFormat latLong;
  for (auto iteration : state) {
    for (const std::u16string_view text : texts) {
      std::int32_t format = 0;
      if (latLong.IsLatLong(text, format) != kAccept)
        return state.SkipWithError("a text is not what it should be");
      benchmark::DoNotOptimize(format);
    }
  }
  state.counters["cells/s"] =
      benchmark::Counter(static_cast<double>(static_cast<std::int64_t>(state.iterations()) *
                                             static_cast<std::int64_t>(texts.size())),
                         benchmark::Counter::kIsRate);
}

template <class Function>
void RegisterSets(const std::string& name, const TextSet* begin, const TextSet* end,
                  Function function) {
  for (const TextSet* set = begin; set != end; ++set)
    benchmark::RegisterBenchmark(
        (name + '/' + set->name).c_str(),
        [set, function](benchmark::State& state) { function(state, set->texts); });
}

const bool kRegistered = [] {
  RegisterSets("ParseCoordinates", std::begin(kAccepted), std::end(kAccepted), &Parse);
  RegisterSets("RecogniseCoordinates", std::begin(kAccepted), std::end(kAccepted),
               &Recognise<true>);
  RegisterSets("RefuseCoordinates", std::begin(kRefused), std::end(kRefused), &Recognise<false>);
  return true;
}();

}  // namespace
