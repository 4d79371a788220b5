// Work on the window's thread that would take longer than a picture may: it is done in slices between two
// pictures, and the window goes on meanwhile.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <functional>
#include <utility>

namespace zentaq {

class SlicedWork : public QObject {
    Q_OBJECT

 public:
    static constexpr qint64 budgetMs = 8;

    /// `slice` does a part that takes a small share of a millisecond's work, and answers whether there is
    /// more to do. `afterSlices` draws how far it has come: with each picture, and at the end.
    SlicedWork(std::function<bool()> slice, std::function<void()> afterSlices, QObject* parent)
        : QObject(parent), slice_(std::move(slice)), after_(std::move(afterSlices)) {
        connect(&timer_, &QTimer::timeout, this, &SlicedWork::work);
    }

    void start() { timer_.start(0); }
    void stop() { timer_.stop(); }
    bool running() const { return timer_.isActive(); }

 private:
    void work() {
        QElapsedTimer spent;
        spent.start();
        bool more = true;
        while (more && spent.elapsed() < budgetMs) more = slice_();
        if (!more) timer_.stop();
        after_();
    }

    std::function<bool()> slice_;
    std::function<void()> after_;
    QTimer timer_;
};

}  // namespace zentaq
