#include "song/PatternBank.h"

#include "editing/Line.h"
#include "engine/Schedule.h"
#include "song/Instrument.h"
#include "song/PatternRow.h"

#include <cstring>
#include <vector>

PatternBank::PatternBank(Schedule* s, Instrument* o)
    : lines(new Line*[8]), owner(o), schedule(s), working(512), patternRow(new PatternRow(this)) {}

PatternBank::~PatternBank() {
    for (int32_t i = 0; i < lineCount; ++i)
        delete lines[i];
    delete[] lines;
    delete patternRow;
}

int32_t PatternBank::AddLine() {
    Line* line = new Line(this, lineCount, stepsPerMeasure);
    line->SetPoints(new PlayPointList(working.bound));
    lines[lineCount] = line;
    if (++lineCount == lineCapacity) {
        Line** grown = new Line*[lineCapacity + 5];
        std::memcpy(grown, lines, sizeof(Line*) * lineCount);
        delete[] lines;
        lines = grown;
        lineCapacity += 5;
    }
    return lineCount - 1;
}

Line* PatternBank::GetLine(int32_t index) const {
    return index >= 0 && index < lineCount ? lines[index] : nullptr;
}

void PatternBank::DeleteLine(int32_t index) {
    if (index < 0 || index >= lineCount)
        return;
    for (PlayPointList& p : patterns)
        p.RemoveRangeOfLine(0, p.bound, index);
    working.RemoveRangeOfLine(0, working.bound, index);

    std::vector<PlayPoint> compiled;
    for (int32_t i = 0; i < schedule->count; ++i)
        if (schedule->events[i].line == index)
            compiled.push_back(schedule->events[i]);
    schedule->RemovePoints(compiled.data(), static_cast<int32_t>(compiled.size()));

    for (PlayPointList& p : patterns)
        p.CloseLineGap(index);
    working.CloseLineGap(index);
    schedule->LineRemoved(index);

    owner->RemoveLineSamples(index);

    std::memmove(lines + index, lines + index + 1, sizeof(Line*) * (lineCount - index - 1));
    --lineCount;
    for (int32_t i = index; i < lineCount; ++i)
        lines[i]->SetIndex(i);
    FullRefresh();
}

void PatternBank::SetLineWindow(int32_t visibleMeasures, int32_t firstMeasure) {
    for (int32_t i = 0; i < lineCount; ++i)
        lines[i]->SetWindow(visibleMeasures, firstMeasure);
}

void PatternBank::SetLinesFractions(uint8_t flag) {
    for (int32_t i = 0; i < lineCount; ++i)
        lines[i]->SetFractions(flag);
}

bool PatternBank::IsGroupFree(int32_t group) const {
    for (int32_t i = 0; i < lineCount; ++i)
        if (lines[i]->controlGroup == group)
            return false;
    return true;
}

void PatternBank::SaveWorking() {
    patterns[current].Assign(working);
    Refresh();
}

void PatternBank::LoadPattern(int32_t index) {
    if (index >= 0 && index < PatternCount) {
        working.Assign(patterns[index]);
        current = index;
        RebuildLines();
    }
    Refresh();
}

void PatternBank::RestoreWorking() {
    working.Assign(patterns[current]);
    RebuildLines();
    Refresh();
}

void PatternBank::ClearWorking() {
    working.Clear();
    RebuildLines();
    Refresh();
}

void PatternBank::ChangeLength(int32_t direction) {
    const int32_t measure = stepsPerMeasure * 64;
    int32_t bound;
    if (direction == 1)
        bound = working.bound + measure;
    else if (direction == -1 && working.bound >= (stepsPerMeasure + 1) * 64)
        bound = working.bound - measure;
    else
        return;
    working.SetBound(bound);
    if (ShownIsPlaying())
        Play(current, 0, 0);
    RebuildLines();
    FullRefresh();
}

void PatternBank::DoublePattern() {
    SaveWorking();
    const int32_t b = working.bound;
    PlayPointList doubled(working);
    doubled.SetBound(2 * b);
    for (int32_t i = 0; i < working.count; ++i) {
        PlayPoint p = working.items[i];
        p.time += b;
        doubled.Insert(p);
    }
    patterns[current].Assign(doubled);
    schedule->Reserve(doubled.count);
    working.Assign(doubled);
    RebuildLines();
    Refresh();
    Play(current, 0, 0);
}

// Compiles straight from the list: the engine lock keeps the other thread's
// edits out, so no copy is needed. Every pattern's points were reserved in
// the schedule when it was stored or grew, so a switch in the tick allocates
// nothing.
void PatternBank::Play(int32_t index, int32_t position, uint8_t mode) {
    if (index < 0 || index >= PatternCount)
        return;
    schedule->StagePattern(index == current ? working : patterns[index]);
    schedule->CommitPattern(mode, position);
    playing = index;
    patternRow->SetPlaying(index);
}

void PatternBank::Stop() {
    schedule->Stop();
    playing = -1;
    patternRow->SetPlaying(-1);
}

void PatternBank::SetPattern(int32_t index, const PlayPointList& list) {
    if (index < 0 || index >= PatternCount)
        return;
    patterns[index].Assign(list);
    schedule->Reserve(list.count);
    if (index == current) {
        working.Assign(list);
        LoadPattern(index);
    }
}

PlayPointList PatternBank::GetPattern(int32_t index) const {
    return PlayPointList(index == current ? working : patterns[index]);
}

// A point at or past the pattern's end is refused by the list, and must not
// reach the schedule either, where the walker would wait for it.
void PatternBank::AddPoint(PlayPoint p) {
    working.Insert(p);
    schedule->Reserve(working.count);
    if (ShownIsPlaying() && p.time < working.bound)
        schedule->InsertPoint(p);
}

void PatternBank::ReplacePoint(PlayPoint p) {
    working.InsertOrReplace(p);
    schedule->Reserve(working.count);
    if (ShownIsPlaying() && p.time < working.bound)
        schedule->ReplacePoint(p);
}

void PatternBank::RemovePoint(PlayPoint p) {
    working.Remove(p);
    if (ShownIsPlaying())
        schedule->RemovePoint(p);
}

void PatternBank::RemovePoints(const PlayPoint* points, int32_t n) {
    if (n > 0)
        working.RemoveRangeOfLine(points[0].time, points[n - 1].time, points[0].line);
    if (ShownIsPlaying())
        schedule->RemovePoints(points, n);
}

// Points at or past the pattern's end reach neither list.
void PatternBank::AddPoints(const PlayPoint* points, int32_t n) {
    while (n > 0 && points[n - 1].time >= working.bound)
        --n;
    working.InsertSorted(points, n, false);
    schedule->Reserve(working.count);
    if (ShownIsPlaying() && n > 0)
        schedule->InsertPoints(points, n, false);
}

void PatternBank::ReplacePoints(const PlayPoint* points, int32_t n) {
    while (n > 0 && points[n - 1].time >= working.bound)
        --n;
    working.InsertSorted(points, n, true);
    schedule->Reserve(working.count);
    if (ShownIsPlaying() && n > 0)
        schedule->InsertPoints(points, n, true);
}

void PatternBank::RebuildLines() {
    std::vector<PlayPointList*> lists(lineCount);
    for (int32_t i = 0; i < lineCount; ++i)
        lists[i] = new PlayPointList(working.bound);
    for (int32_t i = 0; i < working.count; ++i) {
        const PlayPoint& p = working.items[i];
        if (p.line < lineCount)
            lists[p.line]->Insert(p);
    }
    for (int32_t i = 0; i < lineCount; ++i)
        lines[i]->SetPoints(lists[i]);
}

double PatternBank::GetStepMs() const {
    return schedule->stepMs;
}
int32_t PatternBank::GetLastControlGroup() const {
    return owner->GetLastControlGroup();
}
SoundBuffer* PatternBank::NewBufferForLine(int32_t line) {
    return owner->NewBufferForLine(line);
}
void PatternBank::RemoveEntry(const std::string& name, const std::string& path, SoundBuffer* buffer,
                              int32_t line) {
    owner->RemoveEntry(name, path, buffer, line);
}
void PatternBank::LineSelected(Line* line) {
    owner->LineSelected(line);
}
void PatternBank::Refresh() {
    owner->PatternLengthChanged();
}
void PatternBank::FullRefresh() {
    owner->RefreshInstrument();
}
