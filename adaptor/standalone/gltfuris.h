#pragma once
// The URIs by which a glTF file names its images and buffers: relative ones
// are read from the file's folder, so a file written to another folder must
// name the same files from there.

#include <filesystem>
#include <string>

namespace vuk::rgw::adaptor::standalone {

bool IsDataUri(const std::string& uri);
// The path a relative URI names: its %XX escapes decoded.
std::string DecodedUri(const std::string& uri);

// The URI, relative to the folder `from`, as seen from the folder `to`. Data
// URIs, URIs with a scheme and absolute paths stay as they are.
std::string RebaseUri(const std::string& uri, const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace vuk::rgw::adaptor::standalone
