// Boxes in a line of choices that breaks where the window is narrow, and the channels of a log in them.
#pragma once

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <string>

#include "logs/log_channel.h"
#include "logs/log_columns.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"

namespace zentaq {

/// A box behind its caption, from which no line parts it.
inline QComboBox* addChoice(QLayout& line, const QString& name, const QString& caption,
                            const QString& meaning, QWidget* parent) {
    auto* box = new QWidget(parent);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(margins(box->fontMetrics(), Space::None));
    row->setSpacing(space(box->fontMetrics(), Space::Tight));
    auto* combo = named(new QComboBox(box), name, meaning);
    combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    auto* label = new QLabel(caption, box);
    label->setBuddy(combo);
    row->addWidget(label);
    row->addWidget(combo);
    line.addWidget(box);
    return combo;
}

/// The entry with this key; the first one where there is none.
inline void choose(QComboBox& combo, const QString& key) {
    const int place = combo.findData(key);
    combo.setCurrentIndex(place < 0 && combo.count() > 0 ? 0 : place);
}

/// The channels of a log by their captions, with the newer names as keys. What was chosen stays; `first` is
/// it before anything was.
inline void fillChannels(QComboBox& combo, const LogColumns* log, const char* first) {
    const QSignalBlocker quiet(combo);
    const QVariant before = combo.currentIndex() < 0 ? QVariant(QString(first)) : combo.currentData();
    combo.clear();
    if (log == nullptr) return;
    for (const std::string& name : log->names()) {
        if (isTimeColumn(name)) continue;
        combo.addItem(shownString(channelCaption(name)), qString(newerChannelName(name)));
    }
    choose(combo, before.toString());
}

}  // namespace zentaq
