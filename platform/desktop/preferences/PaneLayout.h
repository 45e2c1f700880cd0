#pragma once

#include <Qt>

class QFrame;
class QVBoxLayout;
class QWidget;

namespace orvello {

/// Gives a pane its column of parts, with margins and distances in proportion to its font.
QVBoxLayout* makePaneLayout(QWidget& pane);

/// The side where the interface's lines begin, also for a text that is written the other way round.
Qt::Alignment leadingEdge(const QWidget& view);

/// A thin line across.
QFrame* makeSeparator();

} // namespace orvello
