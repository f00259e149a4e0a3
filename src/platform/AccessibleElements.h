#pragma once

#include <QString>
#include <optional>
#include <vector>

namespace velmora {

// One element of a program's accessibility tree, as the backend addresses it, with the texts read
// while it was found.
struct AccessibleElement {
    QString service; // where the element lives (the program's connection on the accessibility bus)
    QString path;    // which element
    std::optional<QString> title;
    std::optional<QString> description;
    bool operator==(const AccessibleElement&) const = default;
};

// Which elements a query keeps: those of this role (the backend's role name) and, when set, subrole.
struct AXElementSelector {
    QString role;
    std::optional<QString> subrole;
    bool operator==(const AXElementSelector&) const = default;
};

// Where a query looks, from a window's element: the element itself, its children, its visible
// children, or anywhere below it in depth-first order (toolkits nest tabs a few levels down).
struct AXElementQuery {
    enum class Kind { match, matchChildren, matchVisibleChildren, matchDescendants, discard };
    Kind kind = Kind::discard;
    AXElementSelector selector;
};

// The window a query starts from: its program and its title pick the window's element.
struct AccessibleWindow {
    quint32 id = 0;
    qint32 pid = 0;
    QString title;
};

// Other programs' accessibility trees. Both calls block for at most the backend's time-out, so they
// are made off the main thread; a program that exposes nothing, or never answers, yields nothing.
class AccessibleElements {
public:
    virtual ~AccessibleElements() = default;

    virtual std::vector<AccessibleElement> query(const AccessibleWindow& window,
                                                 const AXElementQuery& query) = 0;
    // Selects a tab, presses a button: the element's default action. False when it could not be done.
    virtual bool press(const AccessibleElement& element) = 0;
};

} // namespace velmora
