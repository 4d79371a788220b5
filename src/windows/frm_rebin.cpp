#include "windows/frm_rebin.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "tables/line_commands.h"
#include "tables/table_badges.h"

namespace zentaq {

namespace {

QString listOf(const std::vector<float>& headers) {
    QStringList numbers;
    for (const float header : headers) numbers.append(qString(numberText(header)));
    return numbers.join(", ");
}

std::vector<float> evenly(float from, float to, std::size_t count) {
    std::vector<float> headers;
    for (std::size_t i = 0; i < count; ++i) {
        const float share = static_cast<float>(i) / static_cast<float>(count - 1);
        headers.push_back(roundTo(from + (to - from) * share, 1));
    }
    return headers;
}

QString tablesInWords(const TableSheet& sheet) {
    QStringList names;
    for (const std::string_view table : tablesOnAxesOf(sheet)) names.append(qString(tableTitle(table)));
    return names.join(", ");
}

}  // namespace

FrmRebin::FrmRebin(const TableSheet& sheet, DisplayMode mode, QWidget* parent)
    : QDialog(parent), sheet_(sheet), mode_(mode) {
    named(this, "frmRebin", "New axes of the table");
    setWindowTitle("New Axes: " + qString(sheet.title()));
    QLabel* what = plainLabel("lblWhat", "What is done", this);
    what->setText("The values are taken between the present headers. On these axes stand: " +
                  tablesInWords(sheet) + ".");
    what->setWordWrap(true);
    auto* form = new QFormLayout;
    const TableAxes axes = axesOf(sheet);
    txtColumns_ =
        makeAxis("txtColumns", "Columns (" + qString(axisUnitOf(sheet, true)) + ")", axes.columns, form);
    txtRows_ = makeAxis("txtRows", "Rows (" + qString(axisUnitOf(sheet, false)) + ")", axes.rows, form);
    preview_ = named(new TableGridView(this), "grdPreview", "The table on its new axes");
    preview_->setMode(mode);
    preview_->setSelectionMode(QAbstractItemView::SingleSelection);
    lblState_ = plainLabel("lblState", "Whether it can be done", this);
    lblState_->setWordWrap(true);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    cmdRebin_ = buttons->addButton("&Re-bin", QDialogButtonBox::AcceptRole);
    cmdRebin_->setObjectName("cmdRebin");
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* whole = new QVBoxLayout(this);
    whole->addWidget(what);
    whole->addLayout(form);
    whole->addWidget(preview_, 1);
    whole->addWidget(lblState_);
    whole->addWidget(buttons);
    const QSize room = screen()->availableGeometry().size();
    resize(std::min(room.width() * 9 / 10, fontMetrics().averageCharWidth() * 130),
           std::min(room.height() * 9 / 10, fontMetrics().height() * 34));
    preview();
    txtColumns_->setFocus();
    txtColumns_->setCursorPosition(0);
}

QLineEdit* FrmRebin::makeAxis(const QString& name, const QString& caption, const std::vector<float>& headers,
                              QFormLayout* form) {
    auto* row = new QHBoxLayout;
    auto* field = named(new QLineEdit(listOf(headers), this), name, caption + ", the lowest first");
    field->setCursorPosition(0);
    auto* even = named(new QPushButton("Spread evenly", this), "cmdSpread" + name.mid(3),
                       "Spread the headers evenly between the first and the last: " + caption);
    even->setAutoDefault(false);
    row->addWidget(field, 1);
    row->addWidget(even);
    auto* label = new QLabel(caption, this);
    label->setBuddy(field);
    form->addRow(label, row);
    connect(field, &QLineEdit::textChanged, this, &FrmRebin::preview);
    connect(even, &QPushButton::clicked, this, [this, field] { spread(*field); });
    return field;
}

void FrmRebin::spread(QLineEdit& field) {
    endOnFailure(
        [&] {
            const auto headers = headersOf(field.text().toStdString());
            if (headers.size() < 2) throw Failure("Enter at least the first and the last header");
            field.setText(listOf(evenly(headers.front(), headers.back(), headers.size())));
        },
        [&](const std::string& why) { say(shownString(why), false); });
    field.setFocus();
}

TableAxes FrmRebin::wanted() const {
    TableAxes axes{headersOf(txtColumns_->text().toStdString()), headersOf(txtRows_->text().toStdString())};
    if (axes.columns.empty()) throw Failure("Enter the headers of the columns");
    if (axes.rows.empty()) throw Failure("Enter the headers of the rows");
    return axes;
}

void FrmRebin::say(const QString& text, bool good) {
    lblState_->setText(text);
    QPalette colors = lblState_->palette();
    const LookColors& look = lookColors(mode_);
    colors.setColor(QPalette::WindowText, good ? look.text : look.warning);
    lblState_->setPalette(colors);
    cmdRebin_->setEnabled(good);
}

void FrmRebin::preview() {
    endOnFailure(
        [&] {
            const Rebinning plan = rebinned(sheet_, wanted());
            const int rows = static_cast<int>(plan.axes.rows.size());
            const int columns = static_cast<int>(plan.axes.columns.size());
            preview_->cells().show(nullptr);
            cells_.resize(rows, columns);
            for (int column = 0; column < columns; ++column)
                cells_.text(0, column + 1, numberText(plan.axes.columns[static_cast<std::size_t>(column)]));
            for (int row = 0; row < rows; ++row) {
                cells_.text(rows - row, 0, numberText(plan.axes.rows[static_cast<std::size_t>(row)]));
                for (const RebinnedTable& table : plan.tables) {
                    if (table.name != sheet_.table()) continue;
                    for (int column = 0; column < columns; ++column)
                        cells_.text(rows - row, column + 1, numberText(table.value(row, column, columns)));
                }
            }
            preview_->cells().show(&cells_);
            preview_->nameAxes(qString(cornerOf(sheet_)), qString(axesInWords(sheet_)));
            preview_->sizeColumns(false);
            const auto refused = refusedOf(sheet_, plan);
            if (!refused.empty()) return say(qString(refused.front().brief()), false);
            say("The table as it will be: " + QString::number(rows) + " rows, " + QString::number(columns) +
                    " columns. Nothing is changed before you press Re-bin.",
                true);
        },
        [&](const std::string& why) { say(shownString(why), false); });
}

}  // namespace zentaq
