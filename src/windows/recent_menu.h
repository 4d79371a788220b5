// The menu of the files that were in hand last, made when it opens.
#pragma once

#include <QMenu>
#include <functional>
#include <string>
#include <vector>

namespace zentaq {

/// One entry a path, with a digit as its letter: the name, and behind it the folder, cut in its middle where
/// it is long.
void fillRecentMenu(QMenu& menu, const std::vector<std::string>& paths,
                    const std::function<void(const std::string& path)>& open);

}  // namespace zentaq
