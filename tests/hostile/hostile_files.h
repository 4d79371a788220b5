// Files that nobody should be able to hurt a reader with: good ones of every form, spoilt in every way, under
// names that speak to a terminal. The same number always gives the same file.
#pragma once

#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zentaq {

/// The forms of files that are read.
enum class Form { Calibration, Old, Listing, Table, Reply, Trace, Firmware, Datalog, Recipe, Seeds, Index };
inline constexpr int formCount = 11;

/// A good file of a form.
const std::string& goodFile(Form form);

/// What is wrong with a file.
enum class Fault {
    Noise,      ///< random bytes
    Cut,        ///< ends too early
    Stretched,  ///< goes on where it should end
    Flipped,    ///< some bits are the other way round
    Numbers,    ///< NaN, infinity, and what fits no integer
    Lines,      ///< lines twice, missing, in another order, endless
    Controls,   ///< characters that nobody sees, and bytes of none
    Foreign,    ///< a good file of another form
    Empty,
    Huge,  ///< two gigabytes, of which nothing is on the disk
    Long,  ///< a good beginning, and megabytes of the same
    Pipe,  ///< that nobody writes to
    Folder,
    Device,  ///< a link to one that never ends
    Socket,
    Circle,  ///< a link to itself
    Missing,
    Name  ///< nothing, but its name is bad
};
inline constexpr int faultCount = 18;

class HostileFiles {
 public:
    HostileFiles(Form form, unsigned seed) : form_(form), random_(seed) {}

    /// Makes the next file in a folder, which has none of the name; its path.
    std::string make(const std::string& folder, int number);
    /// The bytes of a fault that has some.
    std::string content(Fault fault);

 private:
    std::size_t below(std::size_t end);
    std::string noise(std::size_t length);
    void flip(std::string& content);
    void plantNumbers(std::string& content);
    void plantFloats(std::string& content);
    void spoilLines(std::string& content);
    void plantControls(std::string& content);

    Form form_;
    std::mt19937 random_;
};

/// The fault of a file by its number.
Fault faultOf(int number);

}  // namespace zentaq
