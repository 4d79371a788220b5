#include "live/dashboard_plan.h"

#include <algorithm>
#include <array>

namespace zentaq {

namespace {

constexpr auto order = std::to_array<std::string_view>(
    {"shpCheckEngine", "shpOverRev", "lblTach", "lblAAFR",         "lblMAP",  "lblAMAP",
     "lblADV",         "lblCLT",     "lblMAT",  "lblTPS",          "lblKNK",  "lblVolt",
     "lblDAFR",        "lblPPW",     "lblPID",  "lblRetard",       "lblEGOC", "lblEGOV",
     "lblTFPW",        "lblIAC",     "lblSADV", "lblADVSplit",     "lblSPW",  "lblSID",
     "lblSIP",         "lblPOT",     "lblSOT",  "lblIACDirection", "lblTemp"});

struct SmallDial {
    std::string_view name;
    std::string_view readout;
    bool fuel;
};
constexpr auto smallDials = std::to_array<SmallDial>({{"TPS", "lblTPS", false},
                                                      {"VOLT", "lblVolt", false},
                                                      {"Coolant", "lblCLT", true},
                                                      {"MAT", "lblMAT", true},
                                                      {"IAC", "lblIAC", true}});

/// Rows of this many least heights are comfortable to read.
constexpr double comfort = 1.3;
/// A dial that is smaller has no room for numbers: so many least heights of a tile.
constexpr double leastDial = 2.6;
constexpr double leastSmallDials = 3.6;
/// Wide as a share of its height: the face of the mixture is not much more than half a disc.
constexpr double mixtureShape = 0.72;
constexpr double smallFaceShape = 0.8;
/// Tiles come first: so many stay on the first page whatever the dials take.
constexpr int leastTiles = 8;
constexpr int leastBesideStatus = 4;

bool isLamp(std::string_view name) {
    return name.starts_with("shp");
}

int rowsIn(const DashRoom& room) {
    const auto fit = [&](double height) {
        return static_cast<int>((room.height + room.gap) / (height + room.gap));
    };
    if (room.oneLine) return 1;
    const int comfortable = fit(room.tileHeight * comfort);
    return std::max(1, comfortable >= 2 ? comfortable : std::min(2, fit(room.tileHeight)));
}

class Planner {
 public:
    Planner(const DashRoom& room, std::span<const std::string_view> tiles, int page)
        : room_(room), rows_(rowsIn(room)), tiles_(tiles.begin(), tiles.end()) {
        plan_.page = page;
        right_ = room.width;
        const int tilesBeside = (room.width - room.status) / (room.tileWidth + room.gap);
        if (room.status > 0 && room.status >= room.codes && tilesBeside >= leastBesideStatus) {
            takeStatus(room.status);
        } else if (room.codes > 0) {
            takeStatus(std::min(room.codes, room.width / 2));
        }
        if (!room.oneLine) takeDials();
        placeTiles();
    }
    DashPlan plan() && { return std::move(plan_); }

 private:
    int leastColumns() const { return std::max(1, (leastTiles + rows_ - 1) / rows_); }
    int leastForTiles() const { return leastColumns() * (room_.tileWidth + room_.gap) - room_.gap; }
    int left() const { return right_ - left_; }
    bool fits(int width) const { return left() - width - room_.gap >= leastForTiles(); }

    void takeStatus(int width) {
        plan_.status = {right_ - width, 0, width, room_.height};
        right_ -= width + room_.gap;
    }

    void takeDials() {
        if (room_.height < room_.tileHeight * leastDial) return;
        if (room_.picture > 0) return takePicture();
        const int round = std::min(room_.height, room_.width / 4);
        if (fits(round)) takeDial("Tachometer", round);
        const int mixture = static_cast<int>(round * mixtureShape);
        if (room_.fuel && fits(mixture)) takeDial("AFR", mixture);
        if (room_.height >= room_.tileHeight * leastSmallDials) takeSmallDials();
    }
    /// As large as it can be without a squeeze of the tiles or of itself.
    void takePicture() {
        const int widest = left() - room_.gap - leastForTiles();
        const int width = std::min(widest, static_cast<int>(room_.height * room_.picture));
        const int height = static_cast<int>(width / room_.picture);
        if (height < room_.tileHeight * leastDial) return;
        plan_.dials.push_back({"dashboardPicture", {left_, (room_.height - height) / 2, width, height}});
        left_ += width + room_.gap;
    }
    void takeDial(std::string_view name, int width) {
        plan_.dials.push_back({name, {left_, 0, width, room_.height}});
        left_ += width + room_.gap;
    }

    void takeSmallDials() {
        const int height = (room_.height - room_.gap) / 2;
        const int width = static_cast<int>(height * smallFaceShape) + room_.dialReadout;
        int row = 0;
        for (const auto& [name, readout, fuel] : smallDials) {
            if (fuel && !room_.fuel) continue;
            if (row == 0 && !fits(width)) return;
            plan_.dials.push_back({name, {left_, row * (height + room_.gap), width, height}});
            std::erase(tiles_, readout);
            if (row == 1) left_ += width + room_.gap;
            row = 1 - row;
        }
        // The lamps take the place beside a last dial that stands alone.
        if (row == 1) {
            placeLamps({left_, height + room_.gap, width, height});
            left_ += width + room_.gap;
        }
    }
    void placeLamps(const DashArea& area) {
        const int height = (area.height - room_.gap) / 2;
        int y = area.y;
        for (const std::string_view lamp :
             {std::string_view("shpCheckEngine"), std::string_view("shpOverRev")}) {
            std::erase(tiles_, lamp);
            plan_.tiles.push_back({lamp, {area.x, y, area.width, height}});
            y += height + room_.gap;
        }
    }

    void placeTiles() {
        const int columns = std::max(1, (left() + room_.gap) / (room_.tileWidth + room_.gap));
        const int places = columns * rows_;
        // Where hardly anything has room the numbers come first.
        if (!room_.oneLine && places < leastBesideStatus) std::erase_if(tiles_, isLamp);
        leaveOutTheUnitAlone(places);
        const auto lamps = static_cast<int>(std::ranges::count_if(tiles_, isLamp));
        const int all = static_cast<int>(tiles_.size());
        if (all <= places) {
            plan_.page = 0;
            const int needed = std::max(1, (all + rows_ - 1) / rows_);
            putOnGrid(tiles_, std::min(columns, needed), false);
            return;
        }
        const int perPage = std::max(1, places - lamps - 1);
        plan_.pages = (all - lamps + perPage - 1) / perPage;
        plan_.page = ((plan_.page % plan_.pages) + plan_.pages) % plan_.pages;
        std::vector<std::string_view> shown(tiles_.begin(), tiles_.begin() + lamps);
        const auto first = tiles_.begin() + lamps + plan_.page * perPage;
        shown.insert(shown.end(), first, first + std::min<std::ptrdiff_t>(perPage, tiles_.end() - first));
        putOnGrid(shown, columns, true);
    }
    /// The unit of the temperatures stands beside each of them: it alone is not worth a column.
    void leaveOutTheUnitAlone(int places) {
        const int before = static_cast<int>(tiles_.size()) - 1;
        if (before < 1 || before >= places || tiles_.back() != "lblTemp") return;
        if (before % rows_ == 0) tiles_.pop_back();
    }
    void putOnGrid(const std::vector<std::string_view>& names, int columns, bool more) {
        const int places = columns * rows_;
        // The button for the rest keeps its place: without it nothing of the rest could be seen.
        const int forTiles = more ? std::max(1, places - 1) : places;
        for (int place = 0; place < static_cast<int>(names.size()) && place < forTiles; ++place) {
            plan_.tiles.push_back({names[static_cast<std::size_t>(place)], cell(place, columns)});
        }
        if (more && places > 1) plan_.more = cell(places - 1, columns);
    }
    /// Down the columns: what belongs together in the order stands together.
    DashArea cell(int place, int columns) const {
        const int column = place / rows_;
        const int row = place % rows_;
        const auto edge = [](int at, int parts, int length, int gap) { return at * (length + gap) / parts; };
        const int x = edge(column, columns, left(), room_.gap);
        const int y = edge(row, rows_, room_.height, room_.gap);
        return {left_ + x, y, edge(column + 1, columns, left(), room_.gap) - x - room_.gap,
                edge(row + 1, rows_, room_.height, room_.gap) - y - room_.gap};
    }

    DashRoom room_;
    int rows_;
    std::vector<std::string_view> tiles_;
    DashPlan plan_;
    int left_ = 0;
    int right_ = 0;
};

}  // namespace

std::span<const std::string_view> tileOrder() {
    return order;
}

std::string_view readoutOfDial(std::string_view dial) {
    const auto found = std::ranges::find(smallDials, dial, &SmallDial::name);
    return found == smallDials.end() ? std::string_view{} : found->readout;
}

std::string_view readoutLikeDial(std::string_view dial) {
    if (dial == "Tachometer") return "lblTach";
    return dial == "AFR" ? "lblAAFR" : readoutOfDial(dial);
}

DashPlan planDashboard(const DashRoom& room, std::span<const std::string_view> tiles, int page) {
    return Planner(room, tiles, page).plan();
}

}  // namespace zentaq
