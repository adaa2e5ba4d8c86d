// What assistive technology sees of a query panel: a tree of its rows, and in them their words.
#pragma once

namespace lumora {

class QueryPanelWidget;

// From now on query panels can be read; calling it again does nothing.
void installQueryPanelAccessibility();

// Tell assistive technology, when there is any.
void tellFocus(QueryPanelWidget& widget); // the current word has the keyboard
void tellMoved(QueryPanelWidget& widget); // the current row stands elsewhere
void tellLinesChanged(QueryPanelWidget& widget);
void tellAlert(QueryPanelWidget& widget); // something was refused

} // namespace lumora
