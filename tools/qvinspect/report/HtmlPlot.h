// Plots of the HTML report: SVG that needs no script. Marks are in a separate drawing that is stretched over
// the plot, so that a script can zoom by changing its viewBox.
#ifndef QVINSPECT_HTMLPLOT_H
#define QVINSPECT_HTMLPLOT_H

#include <functional>
#include <string>
#include <vector>

#include "report/Output.h"

namespace qvinspect {

// The horizontal axis. Plots of one section that share a domain zoom together.
struct PlotRange {
    const char* domain;  // "au": access unit numbers, "time": seconds
    double from;         // at the left edge
    double perMark;      // the value of one unit of the drawing
    double width;        // of the drawing; the last mark may represent less than the others

    double to() const { return from + perMark * width; }
};

struct PlotTick {
    double at;  // 0 to 1
    std::string label;
};

// Multiples of 1, 2 or 5 times a power of ten between from and to, about `about` of them.
std::vector<double> roundTicks(double from, double to, int about);

// 0 and up to a round number that is at least most.
struct PlotScale {
    double top;
    std::vector<PlotTick> ticks;
};
PlotScale scaleUpTo(double most, std::string (*label)(double));

constexpr double kDrawingHeight = 1000;

struct PlotHead {
    std::string className;
    std::string title;
    std::string note;     // HTML below the title; may be empty
    std::string legend;   // HTML; may be empty
    std::string id = {};  // may be empty
};

struct PlotStrip {
    std::string label;  // without HTML
    std::string className;
    std::function<void()> draw;  // writes the marks of the drawing
};

// Opens a figure: title, note and legend.
void openFigure(Output& out, const PlotHead& head);
void closeFigure(Output& out);

// A high plot with a vertical scale, and strips for marks below.
struct PlotBody {
    PlotRange range;
    double height;  // pixels
    std::vector<PlotTick> ticks;
    std::string label;               // a description for screen readers
    std::string xLabel;              // the horizontal axis
    std::function<void()> backdrop;  // under the marks, in pixels and percents; may be empty
    std::function<void()> draw;
    std::vector<PlotStrip> strips;
};
void writePlot(Output& out, const PlotBody& body);

// Rows of strips, each below its label.
struct PlotLanes {
    PlotRange range;
    std::string label;
    std::string xLabel;
    std::vector<PlotStrip> lanes;
    std::vector<PlotTick> ticks;  // instead of those of the range; empty for those of the range
};
void writeLanes(Output& out, const PlotLanes& lanes);

// The position of a mark in a drawing.
struct MarkSpan {
    double left;
    double width;
};

// From mark first to the one before end, within the range, with gaps between the marks if there are few.
MarkSpan spanOf(const PlotRange& range, size_t first, size_t end);

// One mark of a drawing, with its tooltip.
void writeMark(Output& out, const char* className, MarkSpan span, double y, double height,
               const std::string& tip);

// A drawing is measured from its top; share is measured from the bottom, 0 to 1.
double drawingY(double share);

struct DataTable {
    std::vector<std::string> columns;
    std::function<void()> rows;
};
void writeDataTable(Output& out, const DataTable& table);

}  // namespace qvinspect

#endif
