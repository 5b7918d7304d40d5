#pragma once
// The Compare button and the byte comparison it is meant to use one day.

#include <filesystem>

namespace tvk {

struct Context;

// btnCompare_Click: says the command is not there yet and does nothing else.
void btnCompare_Click(Context& ctx);

// True when the second file holds the first one's bytes. Only the first file's length is
// compared, so a second file that goes on beyond it still compares equal; a second file
// that ends first is an error for the handler (false after Ignore). False when either
// file is missing.
bool CompareFiles(Context& ctx, const std::filesystem::path& first,
                  const std::filesystem::path& second);

}  // namespace tvk
