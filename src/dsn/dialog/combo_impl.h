/*
 * Reading and setting the shown item of a drop-down list by its text.  The
 * text is copied into the caller's buffer (always NUL-ended, cut to fit), so
 * nothing handed out here needs freeing.
 */
#ifndef HNSYB_DSN_DIALOG_COMBO_IMPL_H
#define HNSYB_DSN_DIALOG_COMBO_IMPL_H

#include <X11/Intrinsic.h>

#include <cstddef>

// The selected item of `combo` as text; an empty string when none is
// selected.  Returns `buf`.
char* comboSelectedText(Widget combo, char* buf, std::size_t size);

// Adds `text` at position 1 unless present, and shows it as the selection.
void comboShowText(Widget combo, const char* text);

#endif
