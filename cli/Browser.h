#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

/// @file
/// A browser without a window.
namespace vyr::cli
{

/// Looks for Chromium and browsers that are made of it, on the search path and where systems have them; empty when
/// there is none.
std::filesystem::path findBrowser();

/// Opens a page and takes the text of what it has become when it is loaded.
/// @param url of letters that no shell takes for anything but themselves.
/// @param take is given the text in parts.
/// @return why that did not work, in one line; empty when it did.
std::string printPage(const std::filesystem::path& browser, const std::string& url,
                      const std::function<void(std::string_view)>& take);

} // namespace vyr::cli
