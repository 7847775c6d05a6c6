#pragma once

#include <QString>
#include <QTextFragment>
#include <functional>

#include "models/experiment.h"

class QTextDocument;

namespace torvane {

/// An experiment as rich text: its question first, then its steps with what they read, what it
/// shows, and what it costs. Where there is width enough these stand side by side. Each
/// value that is proposed is a link, whose address is its place in ProposedBy, behind a span
/// "tick<place>"; each answer has spans "met<step>.<answer>" and "read<step>.<answer>", the latter
/// on a line of its own where `fits` says that the longest that is read does not fit behind the
/// name.
QString ExperimentHtml(const Experiment& experiment, bool wide,
                       const std::function<bool(const ExperimentAnswer&)>& fits);

/// All values that the experiment proposes, in the order of its text's links.
std::vector<ExperimentSetting> ProposedBy(const Experiment& experiment);

/// Text with the marks of experiments (models/experiment.h) for indices and exponents as HTML.
QString WithNotation(const QString& text);

/// A span of a document, written <a name="...">; its text may not be empty. Not valid without one.
QTextFragment SpanNamed(const QTextDocument& document, const QString& name);

/// Shows another text in a span; everything else, what is selected and where it is scrolled to
/// stay. `faint` is for what is over.
void ShowSpan(QTextDocument& document, const QString& name, const QString& text, bool faint);

}  // namespace torvane
