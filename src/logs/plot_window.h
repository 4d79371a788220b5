// The stretch of a log that a plot shows: zoom and move in time and in the height of the panes, with the way
// back to what was shown before.
#pragma once

#include <cstddef>
#include <vector>

namespace zentaq {

class PlotWindow {
 public:
    /// A part of a pane's height, from 0 at its foot to 1.
    struct Share {
        double low = 0;
        double high = 1;

        bool operator==(const Share&) const = default;
    };
    /// The shortest stretch, in seconds: five rows of a recording.
    static constexpr double shortest = 0.1;

    double from() const { return now_.from; }
    double to() const { return now_.to; }
    double length() const { return now_.to - now_.from; }
    bool showsAll() const;
    Share share(std::size_t pane) const;

    /// Where the log begins and ends, in seconds. What shows all goes on showing all, and what stands at the
    /// end of a log that grows stays there.
    void limits(double first, double last);
    /// Forgets what was shown before, as for another log.
    void reset(double first, double last);
    /// `factor` below 1 comes nearer; `around` stays where it is.
    void zoom(double factor, double around);
    /// By a part of what is shown.
    void move(double part);
    void show(double from, double to);
    /// A box: a stretch of time, and a part of what a pane shows of its height.
    void showBox(double from, double to, std::size_t pane, Share part);
    void all();
    /// What was shown before the last change; false where there is none. Steps of one kind that follow one
    /// another, as those of a wheel, are one change.
    bool back();
    /// Moves so far that a time is shown. It is no change that one goes back from.
    void bring(double seconds);
    /// The panes are others now.
    void wholeHeights();

 private:
    enum class Kind { Zoom, Move, Other };
    struct Shown {
        double from = 0;
        double to = 1;
        std::vector<Share> shares{};  ///< by pane; one that is missing shows all
    };
    void remember(Kind kind);
    void place(double from, double to);

    double first_ = 0;
    double last_ = 1;
    Shown now_;
    std::vector<Shown> before_;
    Kind kind_ = Kind::Other;
};

}  // namespace zentaq
