#pragma once

#include "platform/CloudDatabase.h"

namespace velmora {

// The records named in a PROPFIND (Depth 1) answer for the records' folder: each "<key>.json" member
// with its getetag and getlastmodified. The folder itself, sub-folders and other files are left out.
// Fails (error set) only when the answer is not a multistatus document.
CloudListing parseWebDavListing(const QByteArray& multistatus);

// An HTTP date ("Tue, 24 Nov 2026 01:02:03 GMT") as seconds since 1970; none when it is not one.
std::optional<double> parseHttpDate(const QString& text);

} // namespace velmora
