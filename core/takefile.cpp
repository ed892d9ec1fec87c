#include "core/takefile.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace vuk::rgw::core {

namespace {

std::vector<std::string> Cells(const std::string& line) {
  std::vector<std::string> cells;
  std::stringstream in(line);
  std::string cell;
  while (std::getline(in, cell, ',')) {
    if (!cell.empty() && cell.back() == '\r') cell.pop_back();
    cells.push_back(cell);
  }
  return cells;
}

}  // namespace

bool ImportTakeCsv(const std::string& path, Instance& instance, std::string* error) {
  auto fail = [&](int line, const std::string& problem) {
    if (error) *error = path + (line > 0 ? ": line " + std::to_string(line) : std::string()) + ": " + problem;
    return false;
  };
  std::ifstream csv(path);
  if (!csv) return fail(0, "can't be read");
  std::string line;
  std::getline(csv, line);
  const std::vector<std::string> header = Cells(line);
  if (header.empty() || header[0] != "time") return fail(1, "the first column must be \"time\"");
  for (std::size_t c = 1; c < header.size(); ++c) {
    if (!instance.Inputs().Find(header[c])) return fail(1, "the tool has no channel \"" + header[c] + "\"");
  }
  // Everything is read before the tracks change.
  std::vector<std::vector<double>> rows;
  for (int number = 2; std::getline(csv, line); ++number) {
    if (line.empty() || line == "\r") continue;
    std::vector<double> values;
    for (const std::string& cell : Cells(line)) {
      char* end = nullptr;
      values.push_back(std::strtod(cell.c_str(), &end));
      if (end == cell.c_str() || *end != '\0') return fail(number, "\"" + cell + "\" is not a number");
    }
    if (values.size() != header.size()) {
      return fail(number, std::to_string(values.size()) + " values where the header has " + std::to_string(header.size()));
    }
    rows.push_back(std::move(values));
  }
  for (std::size_t c = 1; c < header.size(); ++c) {
    util::AVar_Linear<double>& track = *instance.TrackOf(header[c]);
    for (const std::vector<double>& row : rows) track.Set(row[0], row[c]);
  }
  return true;
}

}  // namespace vuk::rgw::core
