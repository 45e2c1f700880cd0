#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <xcb/xcb.h>

#include <memory>
#include <set>

namespace orvello {

/// A tray that takes windows to dock, as an X client of its own; it ends as one that crashed.
class FakeXEmbedTray final : public QObject {
    Q_OBJECT

  public:
    FakeXEmbedTray();
    ~FakeXEmbedTray() override;

    /// The windows that are docked now.
    const std::set<xcb_window_t>& docked() const { return docked_; }

  private:
    xcb_atom_t atom(const char* name) const;
    void readEvents();

    xcb_connection_t* connection_;
    xcb_window_t window_;
    xcb_atom_t opcode_;
    std::unique_ptr<QSocketNotifier> readable_;
    std::set<xcb_window_t> docked_;
};

} // namespace orvello
