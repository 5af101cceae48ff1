#pragma once

// The ids of the window's controls, for whoever drives it from outside: tests, screen readers, tools. A view is in its
// page, the editor in the right pane; the others are children of the window itself.
enum ControlId {
    IdToolbar = 1000,
    IdStatusBar,
    IdEditor,
    IdDescription,
    IdHide,    // the small button that hides the left pane
    IdUnhide,  // the one that shows it again
    IdSplitter,
    IdSplitterBar,  // shows where the splitter would go while it is dragged
    IdRight,        // the right pane
    // Of the left pane, plus 0 for the object browser, 1 for ANSI SQL, 2 for the database-specific page, 3 for Kolvex:
    IdLeftButton = 1010,
    IdLeftPage = 1020,
    IdView = 1030,
};
