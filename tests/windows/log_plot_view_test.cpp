// The plot of a datalog: its list, panes, cursors, markers, layouts and pictures.
#include "windows/log_plot_view.h"

#include <gmock/gmock.h>

#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QImage>
#include <QMenu>
#include <QMimeData>
#include <QTemporaryDir>

#include "app/data_points.h"
#include "qt/look.h"
#include "windows/log_plot_fixture.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Names = std::vector<std::string>;
using Panes = std::vector<PlotPane>;

using LogPlot = LogPlotTest;

// ---- Channels

TEST_F(LogPlot, ListsTheChannelsOfTheLogByTheirCaptions) {
    QStringList captions;
    auto* list = find<QListWidget>("lstChannels");
    for (int i = 0; i < list->count(); ++i) captions.append(list->item(i)->text());
    EXPECT_EQ(captions, (QStringList{"Engine Speed", "Manifold Pressure", "Throttle Position",
                                     "EGO Corrections", "Desired Air-to-Fuel Ratio",
                                     "Actual Air-to-Fuel Ratio", "Primary Injector Dutycycle"}));
}

TEST_F(LogPlot, FindsTheColumnOfACaptionWhicheverNameTheLogHas) {
    EXPECT_EQ(view->GraphSelect("Primary Injector Dutycycle"), "PRIDUTY");
    EXPECT_EQ(view->GraphSelect("Battery Voltage"), "");
    DatalogHead head;
    head.columns = {"Seconds", "PID", "VOLT"};
    LogColumns old;
    old.begin(head);
    old.append(std::vector<double>{0, 10, 12});
    view->showLog(&old, "old.dat");
    EXPECT_EQ(view->GraphSelect("Primary Injector Dutycycle"), "PID");
    EXPECT_EQ(view->GraphSelect("Battery Voltage"), "VOLT");
    view->Graph("PID");
    EXPECT_EQ(view->channels().back(), "PRIDUTY");
    EXPECT_EQ(row("Primary Injector Dutycycle")->checkState(), Qt::Checked);
    view->showLog(nullptr, {});
}

TEST_F(LogPlot, PlotsAChannelOnceHoweverOftenItIsAskedFor) {
    const Names before = view->channels();
    view->Graph("RPM");
    EXPECT_EQ(view->channels(), before);
    view->channels({"ADV", "PRIADV", "RPM"});
    EXPECT_EQ(view->channels(), (Names{"PRIADV", "RPM"}));
}

TEST_F(LogPlot, ShowsWhatIsTickedAndTicksWhatItShows) {
    EXPECT_EQ(row("Engine Speed")->checkState(), Qt::Checked);
    EXPECT_EQ(row("EGO Corrections")->checkState(), Qt::Unchecked);
    tick("EGO Corrections", true);
    EXPECT_EQ(area().panes().back(), (PlotPane{{"EGOC"}})) << "in a pane of its own";
    tick("Engine Speed", false);
    EXPECT_EQ(area().panes().front(), (PlotPane{{"MAP", "TPS"}}));
    view->channels({"TPS"});
    EXPECT_EQ(row("Throttle Position")->checkState(), Qt::Checked);
    EXPECT_EQ(row("Manifold Pressure")->checkState(), Qt::Unchecked);
}

TEST_F(LogPlot, AnotherChannelJoinsThePaneInHandWhereNoPaneMoreCanBeRead) {
    view->resize(1200, area().fontMetrics().height() * 20);
    settle();
    key(Qt::Key_Down, Qt::ControlModifier);
    tick("EGO Corrections", true);
    EXPECT_EQ(area().panes().at(1), (PlotPane{{"MAP", "TPS", "EGOC"}}));
}

TEST_F(LogPlot, TheSearchLeavesWhatFits) {
    find<QLineEdit>("txtFindChannel")->setText("fuel");
    EXPECT_FALSE(row("Actual Air-to-Fuel Ratio")->isHidden());
    EXPECT_TRUE(row("Engine Speed")->isHidden());
    find<QLineEdit>("txtFindChannel")->setText("rpm");
    EXPECT_FALSE(row("Engine Speed")->isHidden()) << "by its short name, too";
}

TEST_F(LogPlot, AChannelIsDroppedOntoAPaneOrBetweenTwo) {
    const auto drop = [&](QPointF place) {
        QMimeData data;
        data.setData(channelMimeType, "EGOC");
        QDragEnterEvent enter(place.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&area(), &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&area(), &event);
        settle();
    };
    drop(at(10, 0, 0.4));
    EXPECT_EQ(panesText(area().panes()), "RPM,EGOC;MAP,TPS;=DAFR,AAFR;PRIADV");
    drop(at(10, 0, 0.02));
    EXPECT_EQ(panesText(area().panes()), "RPM;EGOC;MAP,TPS;=DAFR,AAFR;PRIADV");
    drop(at(10, 4, 0.02));
    EXPECT_EQ(panesText(area().panes()), "RPM;MAP,TPS;=DAFR,AAFR;PRIADV;EGOC");
}

TEST_F(LogPlot, TheListGivesTheNameOfTheChannelThatIsDragged) {
    auto* list = find<ChannelRows>("lstChannels");
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->dragDropMode(), QAbstractItemView::DragOnly);
    const std::unique_ptr<QMimeData> data(list->model()->mimeData({list->model()->index(1, 0)}));
    EXPECT_EQ(data->data(channelMimeType), "MAP");
}

// ---- Scales

TEST_F(LogPlot, APaneHasAScaleAChannelUntilOneIsAskedFor) {
    const auto scales = [&] {
        std::vector<PlotScale> all;
        for (const PaneLine& line : area().drawnPanes().at(1)->lines()) all.push_back(line.scale);
        return all;
    };
    // MAP goes from 20 to 100, TPS stands at 1.5.
    EXPECT_THAT(scales(), ElementsAre(PlotScale{20, 100}, PlotScale{0.5, 2.5}));
    key(Qt::Key_Down, Qt::ControlModifier);
    key(Qt::Key_O);
    EXPECT_THAT(scales(), ElementsAre(PlotScale{0.5, 100}, PlotScale{0.5, 100}));
    key(Qt::Key_O);
    EXPECT_THAT(scales(), ElementsAre(PlotScale{20, 100}, PlotScale{0.5, 2.5}));
}

TEST_F(LogPlot, TheCorrectionKeepsItsRangeOnASharedScale) {
    area().panes({{{"MAP", "EGOC"}, true}});
    const auto& lines = area().drawnPanes().at(0)->lines();
    EXPECT_EQ(lines.at(0).scale, (PlotScale{20, 100}));
    EXPECT_EQ(lines.at(1).scale, (PlotScale{-50, 50}));
}

TEST_F(LogPlot, TheMenuOfAPaneSharesItsScaleAndRemovesAChannel) {
    key(Qt::Key_Down, Qt::ControlModifier);
    const auto choose = [&](const char* name) {
        QTimer::singleShot(0, [name] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            auto* action = menu->findChild<QAction*>(name);
            menu->close();
            ASSERT_NE(action, nullptr);
            action->trigger();
        });
        QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, {});
        QApplication::sendEvent(&area(), &event);
        settle();
    };
    choose("mnuSharedScale");
    EXPECT_EQ(panesText(area().panes()), "RPM;=MAP,TPS;=DAFR,AAFR;PRIADV");
    choose("mnuRemoveChannel");
    EXPECT_EQ(panesText(area().panes()), "RPM;=TPS;=DAFR,AAFR;PRIADV");
    choose("mnuMeasureA");
    EXPECT_EQ(area().scene().a, area().scene().cursor);
}

TEST_F(LogPlot, AClickOnALegendPutsTheScaleOfThatChannelAtTheLeft) {
    const auto range = [&] { return area().drawnPanes().at(1)->axes().axis(QCPAxis::atLeft)->range(); };
    EXPECT_GT(range().upper, 100) << "of the pressure";
    click(area().drawnPanes().at(1)->legendSlot(1).center());
    EXPECT_LT(range().upper, 3) << "of the throttle";
    EXPECT_TRUE(window().showsAll());
}

// ---- Zoom

TEST_F(LogPlot, ShowsAllOfALogThatOpens) {
    EXPECT_DOUBLE_EQ(window().from(), 0);
    EXPECT_DOUBLE_EQ(window().to(), 20);
}

TEST_F(LogPlot, ABoxOfTheMouseIsZoomedTo) {
    drag(at(4, 1, 0.9), at(8, 1, 0.4));
    EXPECT_NEAR(window().from(), 4, 0.05);
    EXPECT_NEAR(window().to(), 8, 0.05);
    EXPECT_NEAR(window().share(1).low, 0.4, 0.02);
    EXPECT_NEAR(window().share(1).high, 0.9, 0.02);
    key(Qt::Key_Backspace);
    EXPECT_TRUE(window().showsAll());
}

TEST_F(LogPlot, AFlatBoxIsAStretchOfTime) {
    drag(at(4, 1, 0.5), at(8, 1, 0.5));
    EXPECT_NEAR(window().length(), 4, 0.1);
    EXPECT_EQ(window().share(1), PlotWindow::Share{});
}

TEST_F(LogPlot, TheWheelZoomsAtThePointerAndMovesWithShift) {
    const double under = 5;
    wheel(at(under), 2);
    EXPECT_NEAR(window().length(), 20 * 0.64, 1e-6);
    EXPECT_NEAR(at(under).x(), area().drawnPanes()[0]->xOf(under), 1);
    EXPECT_NEAR((under - window().from()) / window().length(), 0.25, 0.01);
    const double from = window().from();
    wheel(at(under), -1, Qt::ShiftModifier);
    EXPECT_NEAR(window().from(), from + 0.1 * window().length(), 1e-6);
}

TEST_F(LogPlot, KeysZoomMoveAndShowAll) {
    view->cursorAt(10);
    key(Qt::Key_Plus);
    EXPECT_NEAR(window().length(), 10, 1e-9);
    EXPECT_NEAR(window().from(), 5, 1e-9);
    key(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_NEAR(window().from(), 7.5, 1e-9);
    key(Qt::Key_Left, Qt::ControlModifier);
    EXPECT_NEAR(window().from(), 5, 1e-9);
    key(Qt::Key_Minus);
    EXPECT_TRUE(window().showsAll());
    key(Qt::Key_Plus);
    key(Qt::Key_0);
    EXPECT_TRUE(window().showsAll());
    key(Qt::Key_Plus);
    key(Qt::Key_Home, Qt::ControlModifier);
    EXPECT_TRUE(window().showsAll());
    key(Qt::Key_Plus);
    mouse(QEvent::MouseButtonDblClick, at(10));
    settle();
    EXPECT_TRUE(window().showsAll());
}

TEST_F(LogPlot, LeavesTheKeysOfThePlaybackAlone) {
    for (const int one : {Qt::Key_Space, Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Home,
                          Qt::Key_End, Qt::Key_1, Qt::Key_5, Qt::Key_Escape})
        EXPECT_TRUE(passesOn(one)) << one;
    EXPECT_FALSE(passesOn(Qt::Key_A));
    EXPECT_FALSE(passesOn(Qt::Key_Escape)) << "a measuring cursor goes";
}

TEST_F(LogPlot, TheMiddleButtonMovesWhatIsShown) {
    key(Qt::Key_Plus);
    const double from = window().from();
    const double perPixel = window().length() / area().drawnPanes()[0]->axes().width();
    const QPointF start = at(window().from() + 2);
    drag(start, start - QPointF(100, 0), Qt::NoModifier, Qt::MiddleButton);
    EXPECT_NEAR(window().from(), from + 100 * perPixel, 0.02);
}

TEST_F(LogPlot, GrowsWithALogThatIsStillRead) {
    for (std::size_t i = 1001; i < 2001; ++i)
        log.append(std::vector<double>{static_cast<double>(i), 9000, 20, 1, 2, 14, 14, 1});
    view->grown();
    settle();
    EXPECT_DOUBLE_EQ(window().to(), 40);
    EXPECT_EQ(area().drawnPanes()[0]->lines()[0].scale, (PlotScale{1000, 9000}));
}

TEST_F(LogPlot, ShowsALogAsSoonAsItsFirstRowsAreRead) {
    LogColumns reading = plotLog(0);
    view->showLog(&reading, "long.dat");
    settle();
    EXPECT_TRUE(find<QLabel>("lblPlotEmpty")->isVisible());
    EXPECT_NE(row("Engine Speed"), nullptr) << "its columns are known";
    for (int i = 0; i < 101; ++i) reading.append(std::vector<double>{double(i), 900, 20, 1, 2, 14, 14, 1});
    view->grown();
    settle();
    EXPECT_FALSE(find<QLabel>("lblPlotEmpty")->isVisible());
    EXPECT_DOUBLE_EQ(window().to(), 2);
    view->showLog(nullptr, {});
}

// ---- The cursor

TEST_F(LogPlot, AClickMovesTheCursorAndTellsTheTime) {
    double told = -1;
    QObject::connect(view.get(), &LogPlotView::timeChosen, [&](double seconds) { told = seconds; });
    click(at(12, 2));
    EXPECT_NEAR(told, 12, 0.03);
    EXPECT_EQ(*area().scene().cursor, told);
    EXPECT_EQ(area().paneInHand(), 2U);
    EXPECT_TRUE(window().showsAll());
}

TEST_F(LogPlot, TheLegendHasNameValueAndUnitAtTheCursor) {
    const auto legend = [&](std::size_t pane, std::size_t line) {
        return legendText(area().scene(), area().drawnPanes()[pane]->lines()[line]).toStdString();
    };
    view->cursorAt(10);
    EXPECT_EQ(legend(0, 0), "Engine Speed 1500 rpm");
    EXPECT_EQ(legend(1, 0), "Manifold Pressure 100.0 kPa");
    EXPECT_EQ(legend(1, 1), "Throttle Position 1.50 v");
    EXPECT_EQ(legend(2, 1), "Actual Air-to-Fuel Ratio 14.20:1");
    EXPECT_EQ(legend(3, 0), "Advance not in this log");
    view->cursorAt(10.02);
    EXPECT_EQ(legend(1, 0), "Manifold Pressure 20.0 kPa");
}

TEST_F(LogPlot, TheCursorThatPlaysStaysInView) {
    area().zoomBy(0.1);
    EXPECT_NEAR(window().to(), 2, 1e-9);
    view->cursorAt(15);
    EXPECT_LE(window().from(), 15);
    EXPECT_GE(window().to(), 15);
    EXPECT_NEAR(window().length(), 2, 1e-9);
    view->cursorAt(1e9);
    EXPECT_DOUBLE_EQ(*area().scene().cursor, 20);
}

TEST_F(LogPlot, AScreenReaderHearsTimeNamesAndValues) {
    view->cursorAt(10);
    QElapsedTimer watch;
    for (watch.start(); watch.elapsed() < 1500;) QApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_THAT(area().accessibleDescription().toStdString(),
                HasSubstr("Time 00:10.00, Engine Speed 1500 rpm, Manifold Pressure 100.0 kPa"));
    EXPECT_EQ(row("Manifold Pressure")->data(Qt::AccessibleTextRole).toString(),
              "Manifold Pressure 100.0 kPa");
    EXPECT_EQ(row("EGO Corrections")->data(Qt::AccessibleTextRole).toString(), "EGO Corrections 2%");
}

// ---- Measuring

TEST_F(LogPlot, TwoCursorsMeasureTimesAndValuesBetweenThem) {
    view->cursorAt(9);
    key(Qt::Key_A);
    auto* table = find<QTableWidget>("tblMeasures");
    EXPECT_FALSE(table->isVisible());
    view->cursorAt(11);
    key(Qt::Key_B);
    ASSERT_TRUE(table->isVisible());
    EXPECT_EQ(find<QLabel>("lblMeasures")->text(), "A 00:09.00   B 00:11.00   B - A 00:02.00");
    QStringList speeds;
    for (int column = 0; column < 7; ++column) speeds.append(table->item(0, column)->text());
    // The rows 450 to 550.
    EXPECT_EQ(speeds, (QStringList{"Engine Speed (rpm)", "1450", "1550", "100", "1450", "1550", "1500"}));
    EXPECT_EQ(table->item(1, 5)->text(), "100.0") << "the spike of the pressure";
    key(Qt::Key_Escape);
    EXPECT_FALSE(table->isVisible());
    EXPECT_FALSE(area().scene().a.has_value());
}

TEST_F(LogPlot, AMeasuringCursorIsDragged) {
    area().measure(5, 15);
    settle();
    drag(at(5), at(7));
    EXPECT_NEAR(*area().scene().a, 7, 0.05);
    EXPECT_TRUE(window().showsAll()) << "no box";
    drag(at(15), at(500));
    EXPECT_DOUBLE_EQ(*area().scene().b, 20) << "within the log";
}

// ---- Markers and hits

TEST_F(LogPlot, AMarkerIsAddedNamedDraggedRenamedAndDeleted) {
    std::vector<LogMark> told;
    QObject::connect(view.get(), &LogPlotView::marksEdited,
                     [&](const std::vector<LogMark>& marks) { told = marks; });
    view->cursorAt(10);
    key(Qt::Key_M);
    auto* field = find<QLineEdit>("txtMark");
    ASSERT_TRUE(field->isVisible());
    EXPECT_TRUE(told.empty()) << "it has no text yet";
    field->setText(" lean here ");
    Q_EMIT field->editingFinished();
    settle();
    EXPECT_THAT(told, ElementsAre(LogMark{10, "lean here"}));
    EXPECT_FALSE(field->isVisible());
    const auto flag = [&] { return QPointF(markFlag(*area().drawnPanes()[0], told[0]).center()); };
    drag(flag(), flag() + QPointF(area().drawnPanes()[0]->xOf(15) - area().drawnPanes()[0]->xOf(10), 0));
    ASSERT_EQ(told.size(), 1U);
    EXPECT_NEAR(told[0].seconds, 15, 0.05) << "by whichever letter it was taken";
    view->cursorAt(told[0].seconds);
    mouse(QEvent::MouseButtonDblClick, flag());
    ASSERT_TRUE(field->isVisible());
    field->setText("rich");
    Q_EMIT field->editingFinished();
    EXPECT_EQ(told[0].text, "rich");
    key(Qt::Key_Delete);
    EXPECT_TRUE(told.empty());
}

TEST_F(LogPlot, AMarkerWithoutATextIsNone) {
    key(Qt::Key_M);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(find<QLineEdit>("txtMark"), &escape);
    EXPECT_TRUE(area().scene().marks.empty());
    EXPECT_FALSE(find<QLineEdit>("txtMark")->isVisible());
}

QColor pixelAt(const QWidget& widget, QPointF place) {
    return const_cast<QWidget&>(widget).grab().toImage().pixelColor(place.toPoint());
}

TEST_F(LogPlot, HitsAreShaded) {
    const QPointF inside = at(5, 3, 0.3);
    const QPointF outside = at(15, 3, 0.3);
    area().showAll();
    const QColor before = pixelAt(area(), inside);
    view->hits({{200, 300}});
    settle();
    EXPECT_NE(pixelAt(area(), inside), before);
    EXPECT_EQ(pixelAt(area(), outside), before);
    view->hits({});
    settle();
    EXPECT_EQ(pixelAt(area(), inside), before);
}

// ---- The overlay

TEST_F(LogPlot, ASecondLogIsLaidOverAndShifted) {
    EXPECT_FALSE(find<QDoubleSpinBox>("spnOverlayShift")->isVisible());
    const LogColumns other = plotLog(501, 100);
    view->overlay(&other, "yesterday.dat");
    settle();
    ASSERT_TRUE(find<QDoubleSpinBox>("spnOverlayShift")->isVisible());
    view->cursorAt(10);
    const PaneLine& pressure = area().drawnPanes()[1]->lines()[0];
    EXPECT_EQ(legendText(area().scene(), pressure).toStdString(), "Manifold Pressure 100.0 kPa | 20.0 kPa");
    // Its spike stands at 2 seconds.
    view->overlayShift(8);
    EXPECT_EQ(legendText(area().scene(), pressure).toStdString(), "Manifold Pressure 100.0 kPa | 100.0 kPa");
    EXPECT_EQ(find<QDoubleSpinBox>("spnOverlayShift")->value(), 8);
    find<QDoubleSpinBox>("spnOverlayShift")->setValue(2.5);
    EXPECT_EQ(view->overlayShift(), 2.5);
    drag(at(10), at(11), Qt::AltModifier);
    EXPECT_NEAR(view->overlayShift(), 3.5, 0.05);
    EXPECT_TRUE(window().showsAll());
    view->overlay(nullptr, {});
    EXPECT_EQ(view->overlayShift(), 0);
    EXPECT_FALSE(find<QDoubleSpinBox>("spnOverlayShift")->isVisible());
}

TEST_F(LogPlot, AnotherLogBeginsWithoutWhatBelongedToTheOneBefore) {
    auto other = std::make_unique<LogColumns>(plotLog(501));
    view->overlay(other.get(), "yesterday.dat");
    view->overlayShift(2);
    view->hits({{1, 2}});
    view->marks({{1, "here"}});
    area().measure(1, 2);
    other.reset();
    const LogColumns next = plotLog(101);
    view->showLog(&next, "next.dat");
    settle();
    EXPECT_EQ(area().scene().other, nullptr);
    EXPECT_EQ(view->overlayShift(), 0);
    EXPECT_TRUE(area().scene().hits.empty());
    EXPECT_TRUE(area().scene().marks.empty());
    EXPECT_FALSE(area().scene().a.has_value());
    EXPECT_DOUBLE_EQ(window().to(), 2);
    EXPECT_EQ(view->channels().size(), 6U) << "channels stay";
    view->showLog(nullptr, {});
}

// ---- Layouts

TEST_F(LogPlot, BeginsWithTheUsualChannelsWhereNothingIsChosen) {
    EXPECT_EQ(area().panes(), (Panes{{{"RPM"}}, {{"MAP", "TPS"}}, {{"DAFR", "AAFR"}, true}, {{"PRIADV"}}}));
}

TEST_F(LogPlot, BeginsWithTheDataPointsOfTheOptions) {
    // The second and third place of the list are MAP and TPS, the 50th is the first pin.
    settings.set("Datalog", "Datalog1", "2");
    settings.set("Datalog", "Datalog2", "3");
    settings.set("Datalog", "Datalog4", "50");
    make();
    EXPECT_EQ(view->channels(), (Names{"MAP", "TPS", "GPIO1"}));
}

TEST_F(LogPlot, ALayoutIsSavedChosenAndDeleted) {
    auto* box = find<QComboBox>("cboLayouts");
    auto* save = find<QPushButton>("cmdSaveLayout");
    auto* remove = find<QPushButton>("cmdDeleteLayout");
    EXPECT_FALSE(save->isEnabled());
    EXPECT_FALSE(remove->isEnabled());
    view->channels({"TPS"});
    box->setEditText("Throttle");
    EXPECT_FALSE(remove->isEnabled());
    save->click();
    EXPECT_TRUE(remove->isEnabled());
    view->channels({"RPM"});
    Q_EMIT box->textActivated("Throttle");
    EXPECT_EQ(view->channels(), Names{"TPS"});
    make();
    EXPECT_EQ(view->channels(), Names{"TPS"}) << "the next time, too";
    EXPECT_EQ(find<QComboBox>("cboLayouts")->currentText(), "Throttle");
    find<QPushButton>("cmdDeleteLayout")->click();
    EXPECT_EQ(find<QComboBox>("cboLayouts")->count(), 0);
    make();
    EXPECT_EQ(view->channels().front(), "RPM");
}

// ---- Pictures

TEST_F(LogPlot, IsSavedAsAPictureADrawingAndADocument) {
    const QTemporaryDir folder;
    const auto saved = [&](const char* name) {
        const QString path = folder.filePath(name);
        EXPECT_EQ(view->savePicture(path).toStdString(), "");
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    };
    const QImage picture = QImage::fromData(saved("a.png"));
    EXPECT_EQ(picture.width(), 2 * area().width());
    EXPECT_TRUE(saved("a.svg").contains("Manifold Pressure"));
    EXPECT_TRUE(saved("a.PDF").startsWith("%PDF"));
}

TEST_F(LogPlot, SaysWhyAPictureIsNotSaved) {
    EXPECT_THAT(view->savePicture("/tmp/a.bmp").toStdString(), HasSubstr(".png, .svg or .pdf"));
    EXPECT_THAT(view->savePicture("/nowhere/at/all/a.png").toStdString(), HasSubstr("not saved"));
}

TEST_F(LogPlot, OffersAPictureWhereSomebodyAsksForThePath) {
    auto* button = find<QPushButton>("cmdSavePicture");
    EXPECT_FALSE(button->isVisible());
    const QTemporaryDir folder;
    const std::string path = folder.filePath("a.png").toStdString();
    view->askPathBy([&](const FileRequest&) { return path; });
    ASSERT_TRUE(button->isVisible());
    button->click();
    EXPECT_TRUE(QFile::exists(folder.filePath("a.png")));
    EXPECT_THAT(find<QLabel>("lblPlot")->text().toStdString(), HasSubstr("Saved"));
}

TEST_F(LogPlot, ASpikeOfOneRowIsInThePictureOfALongLog) {
    const LogColumns longLog = plotLog(200'000, 123'457);
    view->showLog(&longLog, "long.dat");
    area().panes({{{"MAP"}}});
    view->cursorAt(0);
    settle();
    const QImage picture = area().grab().toImage();
    const LogPane& pane = *area().drawnPanes()[0];
    const QColor ink = plotColors()[0];
    // The flat line of 20 kPa stands at the foot; only the spike has ink half way up.
    const int y = static_cast<int>(pane.yOf(pane.lines()[0], 60));
    std::vector<int> found;
    for (int x = pane.axes().left(); x <= pane.axes().right(); ++x) {
        if (picture.pixelColor(x, y) == ink) found.push_back(x);
    }
    ASSERT_EQ(found.size(), 1U);
    EXPECT_NEAR(found[0], pane.xOf(123'457 * 0.02), 1.5);
}

// ---- Without a log

TEST_F(LogPlot, SaysWhatToDoWithoutALogOrAChannel) {
    auto* empty = find<QLabel>("lblPlotEmpty");
    EXPECT_FALSE(empty->isVisible());
    area().panes({});
    EXPECT_EQ(empty->text(), "Choose a channel in the list");
    EXPECT_TRUE(empty->isVisible());
    view->showLog(nullptr, {});
    EXPECT_EQ(empty->text(), "Open a datalog or record one");
    EXPECT_EQ(find<QListWidget>("lstChannels")->count(), 0);
    EXPECT_FALSE(find<QPushButton>("cmdZoomIn")->isEnabled());
    for (const int one : {Qt::Key_Plus, Qt::Key_M, Qt::Key_A, Qt::Key_Backspace}) key(one);
    click({200, 200});
    wheel({200, 200}, 1);
}

}  // namespace
}  // namespace zentaq
