// A splitter that stands where the user left it. What it keeps are shares, not pixels: a place from another
// screen fits this one. No part of it can be pushed out of sight.
#pragma once

#include <QSplitter>
#include <QTimer>
#include <functional>

#include "platform/settings_store.h"

namespace zentaq {

class KeptSplitter : public QSplitter {
    Q_OBJECT

 public:
    /// How `length`, in device-independent pixels, is shared out among the parts.
    using Shares = std::function<QList<int>(int length)>;

    /// `name` is the key of the kept place, too. Its parts share as `byDefault` says, for each length anew,
    /// until the user moves a handle.
    KeptSplitter(Qt::Orientation orientation, const QString& name, SettingsStore& settings, Shares byDefault,
                 QWidget* parent = nullptr);
    ~KeptSplitter() override;

    /// Forgets where the user has put the handles.
    void toDefault();
    /// What a part has while the user has moved no handle.
    int lengthByDefault(const QWidget& part) const;
    /// A part has folded, opened or another size to ask for.
    void shareOut();

 protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void childEvent(QChildEvent* event) override;

 private:
    int length() const { return orientation() == Qt::Horizontal ? width() : height(); }
    void readKept();
    void giveAwayWhatFolded(QList<int>& places) const;
    void moved();
    void store();
    QList<bool> shownParts() const;

    SettingsStore& settings_;
    Shares byDefault_;
    QList<int> kept_;     ///< as they were when the user moved a handle last; empty: he never has
    QTimer tmrStore_;     ///< the disk is not waited for while a handle is dragged
    QList<bool> shared_;  ///< which parts were in view when room was shared out last
    bool sharing_ = false;
};

/// Brings all kept splitters inside a window to their defaults.
void restoreSplitters(const QWidget& window);

}  // namespace zentaq
