#include "core/takefile.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <numeric>
#include <sstream>

#include "core/resimulator.h"

namespace vuk::rgw::core {

namespace {

// How a spreadsheet wrote the file: commas, or semicolons with decimal
// commas where the locale uses them.
struct Dialect {
  char separator = ',';
  char decimal = '.';
};

Dialect DialectOf(const std::string& header) {
  if (header.find(';') != std::string::npos && header.find(',') == std::string::npos) return {';', ','};
  return {};
}

std::string Trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::vector<std::string> Cells(const std::string& line, const Dialect& dialect) {
  std::vector<std::string> cells;
  std::stringstream in(line);
  std::string cell;
  while (std::getline(in, cell, dialect.separator)) cells.push_back(Trimmed(cell));
  return cells;
}

// The whole cell as a number, whatever the process's locale.
bool Number(std::string cell, const Dialect& dialect, double& value) {
  std::replace(cell.begin(), cell.end(), dialect.decimal, '.');
  const char* end = cell.data() + cell.size();
  const auto [stop, failure] = std::from_chars(cell.data(), end, value);
  return !cell.empty() && failure == std::errc() && stop == end;
}

// The channels a header may name, for a header that names another.
std::string ChannelNames(const Instance& instance) {
  std::string names;
  for (std::size_t i = 0; i < instance.Inputs().Count(); ++i) {
    names += (names.empty() ? "" : ", ") + instance.Inputs().Get(i)->name;
  }
  return names.empty() ? "none" : names;
}

}  // namespace

bool ImportTakeCsv(const std::string& path, Instance& instance, std::string* error, TakeImport mode) {
  auto fail = [&](int line, const std::string& problem) {
    if (error) *error = path + (line > 0 ? ": line " + std::to_string(line) : std::string()) + ": " + problem;
    return false;
  };
  std::ifstream csv(path);
  if (!csv) return fail(0, "can't be read");
  std::string line;
  std::getline(csv, line);
  // A byte order mark, as spreadsheets write UTF-8, is no part of the header.
  if (line.rfind("\xEF\xBB\xBF", 0) == 0) line.erase(0, 3);
  const Dialect dialect = DialectOf(line);
  const std::vector<std::string> header = Cells(line, dialect);
  if (header.empty() || header[0] != "time") return fail(1, "the first column must be \"time\"");
  for (std::size_t c = 1; c < header.size(); ++c) {
    if (!instance.Inputs().Find(header[c])) {
      return fail(1, "the tool has no channel \"" + header[c] + "\"; its channels are " + ChannelNames(instance));
    }
  }
  // Everything is read before the tracks change: row after row, each as wide
  // as the header.
  const std::size_t width = header.size();
  std::vector<double> values;
  for (int number = 2; std::getline(csv, line); ++number) {
    if (Trimmed(line).empty()) continue;
    const std::vector<std::string> cells = Cells(line, dialect);
    if (cells.size() != width) {
      return fail(number, std::to_string(cells.size()) + " values where the header has " + std::to_string(width));
    }
    for (std::size_t c = 0; c < width; ++c) {
      const std::string cell = "column \"" + header[c] + "\": \"" + cells[c] + "\" is not a ";
      values.emplace_back();
      if (!Number(cells[c], dialect, values.back())) return fail(number, cell + "number");
      if (!std::isfinite(values.back())) return fail(number, cell + "finite number");
    }
    const double time = values[values.size() - width];
    if (time < 0 || time > Resimulator::kMaxSceneSeconds) {
      return fail(number, "column \"time\": " + cells[0] + " s lies outside the scene's 0 s to " +
                              std::to_string(static_cast<int>(Resimulator::kMaxSceneSeconds)) + " s (a day)");
    }
  }
  if (mode == TakeImport::kReplace) {
    for (std::size_t i = 0; i < instance.Inputs().Count(); ++i) instance.TrackOf(instance.Inputs().Get(i)->name)->records.clear();
  }
  // Into the tracks in time order, whatever the file's: each sample is then
  // appended. Of rows with one time, the last in the file stands.
  std::vector<std::size_t> order(values.size() / width);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return values[a * width] < values[b * width]; });
  for (std::size_t c = 1; c < width; ++c) {
    util::AVar_Linear<double>& track = *instance.TrackOf(header[c]);
    track.records.reserve(track.records.size() + order.size());
    for (const std::size_t row : order) track.Set(values[row * width], values[row * width + c]);
  }
  return true;
}

}  // namespace vuk::rgw::core
