// The panel on the screen with ten thousand rows: what one change costs until it can be seen.
#include "bench_model.h"
#include "lumora/lumora.h"
#include "lumora/widgets/querypanelwidget.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QScrollBar>

#include <string>

namespace lumora::bench {

namespace {

constexpr int RowCount = 10000;

class TPanelOnScreen {
public:
    TPanelOnScreen() {
        FillModel(model_, {10, 20, 15});
        Panel.SetDbStruct(&model_);
        Panel.Activate();
        TFilterBracket* bracket = Panel.GetRootBracket();
        for (int i = 0; i < RowCount; ++i) {
            if (i % 100 == 0)
                bracket = Panel.GetRootBracket()->AddNewBracket();
            TDSField* const field = model_.GetField(1);
            Panel.ManualAddCond(*bracket, field, field->GetOperators().front(), std::to_string(i));
        }
        Widget.setPanel(&Panel);
        Widget.resize(800, 600);
        Widget.show();
        QCoreApplication::processEvents();
        Widget.verticalScrollBar()->setValue(Widget.verticalScrollBar()->maximum() / 2);
        MakeMiddleCurrent();
        Show();
    }

    void MakeMiddleCurrent() { Panel.SetCurrentRowNum(RowCount / 2); }
    // All that is due, down to the pixels.
    void Show() {
        QCoreApplication::processEvents();
        benchmark::DoNotOptimize(Widget.grab());
    }

private:
    TVDBStructure model_; // goes last

public:
    TVQueryPanel Panel;
    QueryPanelWidget Widget;
};

void AddRow(benchmark::State& state) {
    TPanelOnScreen screen;
    for (auto _ : state) {
        screen.MakeMiddleCurrent();
        screen.Panel.KeyDown(keyInsert, {});
        screen.Show();
    }
}
BENCHMARK(AddRow)->Unit(benchmark::kMillisecond);

void MoveRow(benchmark::State& state) {
    TPanelOnScreen screen;
    bool up = false;
    for (auto _ : state) {
        up = !up;
        screen.Panel.KeyDown(up ? keyUp : keyDown, {ssCtrl});
        screen.Show();
    }
}
BENCHMARK(MoveRow)->Unit(benchmark::kMillisecond);

void DeleteRow(benchmark::State& state) {
    TPanelOnScreen screen;
    for (auto _ : state) {
        screen.Panel.KeyDown(keyDelete, {ssCtrl});
        screen.Show();
        state.PauseTiming();
        screen.MakeMiddleCurrent();
        screen.Panel.KeyDown(keyInsert, {});
        state.ResumeTiming();
    }
}
BENCHMARK(DeleteRow)->Unit(benchmark::kMillisecond);

void Repaint(benchmark::State& state) {
    TPanelOnScreen screen;
    for (auto _ : state)
        benchmark::DoNotOptimize(screen.Widget.grab());
}
BENCHMARK(Repaint)->Unit(benchmark::kMillisecond);

void ScrollByALine(benchmark::State& state) {
    TPanelOnScreen screen;
    QScrollBar* const bar = screen.Widget.verticalScrollBar();
    int by = bar->singleStep();
    for (auto _ : state) {
        if (bar->value() + by < 0 || bar->value() + by > bar->maximum())
            by = -by;
        bar->setValue(bar->value() + by);
        screen.Show();
    }
}
BENCHMARK(ScrollByALine)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace lumora::bench

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
