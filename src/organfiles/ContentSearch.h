#pragma once
// The content search: a text among the registration names inside the preset and
// recording files of one folder. It reads files only.

#include <filesystem>
#include <string>
#include <string_view>

namespace tvk {

struct Context;

// One comparison rule, prepared once for a whole search. Names are compared as the
// Windows-1252 bytes stored in the file.
class NameMatcher {
  public:
    NameMatcher(std::string_view text, bool wholeWord, bool matchCase);
    // `field` is a name field's bytes as read, padding included.
    bool matches(std::string_view field) const;

  private:
    std::string needle_;
    bool wholeWord_;
    bool matchCase_;
    bool impossible_ = false;  // the text holds a character no file can
};

struct SearchRequest {
    std::filesystem::path folder;
    std::string text;
    bool presets = false;     // "Preset Files": *.?pg
    bool recordings = false;  // "Recording Files": *.?mr
    bool wholeWord = false;
    bool matchCase = false;
    bool countOnly = false;
};

struct SearchReport {
    int matches = 0;  // every match, shown one by one or only counted
    int filesSearched = 0;
    bool stopped = false;  // "Continue?" answered No
};

// btnSearch_Click: searches every button 0 to 10 of every bank of each file, reports each
// match ("MATCH FOUND", unless Count Only) and ends with "MATCHES FOUND" or "NO MATCHES".
// An empty text is refused with a box before anything is read.
SearchReport btnSearch_Click(Context& ctx, const SearchRequest& request);

}  // namespace tvk
