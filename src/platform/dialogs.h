// The one door through which the core asks a user something. Tests answer it.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace zentaq {

enum class Icon { None, Information, Question, Exclamation, Critical };
enum class Buttons { Ok, Cancel, OkCancel, YesNo };
enum class Answer { Ok, Cancel, Yes, No };

/// A modal box. Lines of `text` are separated by '\n'.
struct Box {
    std::string title;
    std::string text;
    Icon icon = Icon::None;
    Buttons buttons = Buttons::Ok;
    bool declines = false;  ///< the key that is chosen from the start is Cancel or No
    /// Whether what the box is about still is: when it is no more, the box goes as if it was closed. None: it
    /// waits for the user.
    std::function<bool()> stands = {};
};

/// A file dialog. `filter` is "text|pattern|text|pattern"; `filterIndex` counts from 1.
struct FileRequest {
    std::string title;
    std::string folder;
    std::string filter;
    int filterIndex = 1;
    std::string defaultExtension;
    std::string suggestedName;
};

class Dialogs {
 public:
    virtual ~Dialogs() = default;
    /// Closing a box by other means answers Cancel or No where there is one.
    virtual Answer show(const Box& box) = 0;
    /// The chosen path; empty text means cancel.
    virtual std::string openFile(const FileRequest& request) = 0;
    virtual std::string saveFile(const FileRequest& request) = 0;
    virtual std::optional<std::string> input(const std::string& title, const std::string& prompt,
                                             const std::string& initial) = 0;
};

}  // namespace zentaq
