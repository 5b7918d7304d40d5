#pragma once
// Counting the kinds of file on a thumbdrive for the drive information panel.

#include <filesystem>
#include <string>

#include "organfiles/ContentCounts.h"

namespace tvk {

struct Context;

// The counts of the TAVRIN folder's plain files; throws when the folder cannot be read.
ContentCounts countContent(const std::filesystem::path& tavrinFolder);
// The drive information panel's text for those counts.
std::string driveSummary(const std::string& fileSystem, const ContentCounts& counts);

// Counts the plain files of the drive's TAVRIN folder into ctx.state.counts, builds the
// summary into ctx.state.driveInfoText and clears status panels 1 and 2. Only the
// E-family and generic extensions count as presets and music: SPG, APG, SMR and AMR
// files are "other" here, as the organ's own count shows them.
void AnalyzeContent(Context& ctx, const std::filesystem::path& tavrinFolder);

}  // namespace tvk
