// What assistive technology sees of a query panel: its lines, and in them their words.
#pragma once

namespace lumora {

class QueryPanelWidget;

// From now on query panels can be read; calling it again does nothing.
void installQueryPanelAccessibility();

// Tell assistive technology, when there is any.
void tellFocus(QueryPanelWidget& widget); // the current word has the keyboard
void tellLinesChanged(QueryPanelWidget& widget);
void tellAlert(QueryPanelWidget& widget); // something was refused

} // namespace lumora
