#pragma once

#include <QString>
#include <variant>

namespace velmora {

// What the user does with one history entry.
namespace clipboardaction {
// Shows the file in the file manager, then closes the history window.
struct ShowInFinder {
    QString fileURL;
};
// Opens the address with the desktop's default handler; the window stays open.
struct OpenURL {
    QString url;
};
// Shows or hides the preview of the entry; the window stays open.
struct QuickLook {
    QString fileURL;
};
// Closes the window, puts the entry back with all its representations and pastes it.
struct Paste {};
// The same with its text only.
struct PastePlainText {};
struct Delete {};
} // namespace clipboardaction

using ClipboardItemAction =
    std::variant<clipboardaction::ShowInFinder, clipboardaction::OpenURL, clipboardaction::QuickLook,
                 clipboardaction::Paste, clipboardaction::PastePlainText, clipboardaction::Delete>;

} // namespace velmora
