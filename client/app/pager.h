// client/app/pager.h: the program that shows long texts on a terminal page by page.
#pragma once

#include <string>

namespace pavex {

// Shows the text in the user's pager, PAGER or less, and waits until it is left.  False, with nothing shown, when there
// is none: no such program, or a terminal that cannot do what a pager needs while no pager is asked for by name.
bool ShowInPager(const std::string& text);

}  // namespace pavex
