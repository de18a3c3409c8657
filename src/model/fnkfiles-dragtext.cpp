#include "model/fnkfiles-dragtext.h"

#include <glib.h>

#include <algorithm>
#include <memory>

#include "core/fnkraii.h"
#include "core/fnkutil.h"

namespace {

constexpr std::string_view kMarker = "file:";
constexpr std::string_view kUriStart = "file://";

/// All paths or none: nobody expects a drop to act on only some of the items.
std::vector<std::string> KeepIfAllUsable(std::vector<std::string> paths)
{
    const bool all_usable = std::all_of(paths.begin(), paths.end(), [](const std::string& path) {
        return path.starts_with('/') && path.size() <= kMaxPathBytes && path.find('\0') == std::string::npos;
    });
    return all_usable ? paths : std::vector<std::string>();
}

/// Some programs include the terminating NUL in the data.
std::string_view WithoutTerminator(std::string_view text)
{
    return text.ends_with('\0') ? text.substr(0, text.size() - 1) : text;
}

bool IsLocalHost(const char* host)
{
    return host == nullptr || *host == '\0' || g_ascii_strcasecmp(host, "localhost") == 0 ||
           g_ascii_strcasecmp(host, g_get_host_name()) == 0;
}

/// Empty if the URI is not a local file.
std::string PathOfUri(const std::string& uri)
{
    char* host = nullptr;
    const GlibPointer<char> path(g_filename_from_uri(uri.c_str(), &host, nullptr));
    const GlibPointer<char> host_owner(host);
    if (path == nullptr || !IsLocalHost(host)) {
        return {};
    }
    return IsDirectory(path.get()) ? WithSlash(path.get()) : path.get();
}

}  // namespace

std::string MakeDragText(const std::vector<std::string>& paths)
{
    std::string text;
    for (const std::string& path : paths) {
        text += text.empty() ? "" : " ";
        text += kMarker;
        text += path;
    }
    return text;
}

std::vector<std::string> SplitDragText(std::string_view text)
{
    text = WithoutTerminator(text);
    if (!text.starts_with(kMarker)) {
        return {};
    }
    if (text.starts_with(kUriStart)) {
        return SplitUriList(text);
    }
    std::vector<std::string> paths;
    for (std::size_t begin = kMarker.size(); begin != std::string_view::npos;) {
        const std::size_t marker = text.find(kMarker, begin);
        const bool is_last = marker == std::string_view::npos;
        // The character before the next marker separates the items.
        const std::size_t end = is_last ? text.size() : std::max(marker - 1, begin);
        paths.emplace_back(text.substr(begin, end - begin));
        begin = is_last ? marker : marker + kMarker.size();
    }
    return KeepIfAllUsable(std::move(paths));
}

std::string MakeUriList(const std::vector<std::string>& paths)
{
    std::string list;
    for (const std::string& path : paths) {
        const GlibPointer<char> uri(g_filename_to_uri(path.c_str(), nullptr, nullptr));
        if (uri != nullptr) {
            list += uri.get();
            list += "\r\n";
        }
    }
    return list;
}

std::vector<std::string> SplitUriList(std::string_view list)
{
    const std::string text(WithoutTerminator(list));
    if (text.find('\0') != std::string::npos) {
        return {};
    }
    const std::unique_ptr<char*, decltype(&g_strfreev)> uris(g_uri_list_extract_uris(text.c_str()), &g_strfreev);
    std::vector<std::string> paths;
    for (char** uri = uris.get(); *uri != nullptr; ++uri) {
        paths.push_back(PathOfUri(*uri));
    }
    return KeepIfAllUsable(std::move(paths));
}
