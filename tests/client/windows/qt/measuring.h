// tests/client/windows/qt/measuring.h: whether texts have the room they take, in real widgets.
#pragma once

#include <QWidget>
#include <vector>

// The widgets of a window that a user sees something written in: controls, texts, buttons.
std::vector<QWidget*> ShownTexts(const QWidget& window);

// Where a widget lies in its window.
QRect PlaceIn(const QWidget& window, const QWidget& widget);

// Fails the test for each of the window's shown texts that reaches out of the window, has less room than its text
// takes, or overlaps another.
void ExpectNothingCutOrOverlapping(const QWidget& window);
