#include "ui/panes/experiment_text.h"

#include <QGuiApplication>
#include <QPalette>
#include <QStringList>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include "plot/qt_text.h"

namespace torvane {

namespace {

const QString UnreadMark = QStringLiteral("\u2610");
const QString OwnLine =
    QStringLiteral("<br>\u00a0\u00a0\u00a0\u00a0\u00a0");  // as far in as the name

/// A line breaks behind a generator's name only: within a link with no-break signs.
QString LinkText(const ExperimentSetting& setting) {
  const auto unbroken = [](const std::string& part) {
    return QtText(part).replace(u' ', u'\u00a0').replace(u'-', u'\u2011').toHtmlEscaped();
  };
  const QString text = unbroken(setting.Name + " = " + setting.Value);
  return setting.Of.empty() ? text : unbroken(setting.Of) + QStringLiteral(": ") + text;
}

/// Writes links and spans, and numbers them.
class ExperimentWriter {
 public:
  explicit ExperimentWriter(const std::function<bool(const ExperimentAnswer&)>& fits)
      : fits_(fits) {}

  QString Link(const ExperimentSetting& setting) {
    const QString place = QString::number(places_++);
    return QStringLiteral("<a name=\"tick%1\">\u200b</a><a href=\"%1\">%2</a>")
        .arg(place, LinkText(setting));
  }

  QString Links(const std::vector<ExperimentSetting>& settings) {
    QStringList links;
    for (const ExperimentSetting& setting : settings) links << Link(setting);
    return links.join(QStringLiteral(", "));
  }

  QString Step(const ExperimentStep& step, std::size_t number) {
    QString html = QStringLiteral("<li>") + Links(step.Settings);
    if (step.WhileRunning) html += QStringLiteral(", while it runs");
    for (std::size_t i = 0; i < step.Answers.size(); ++i) {
      const ExperimentAnswer& answer = step.Answers[i];
      html +=
          QStringLiteral("<br><a name=\"met%1.%2\">%3</a> %4:%5<a name=\"read%1.%2\">\u2026</a>")
              .arg(number)
              .arg(i)
              .arg(UnreadMark, QtText(answer.Name()).toHtmlEscaped(),
                   fits_(answer) ? QStringLiteral(" ") : OwnLine);
    }
    return html + QStringLiteral("</li>");
  }

  /// Lines in one paragraph, blank ones between two.
  QString Text(const Experiment& experiment) {
    QString html;
    QString text = QtText(experiment.Text).trimmed();
    for (const ExperimentSetting& setting : experiment.Tries) {
      const QString marked = u'[' + QtText(setting.Text()) + u']';
      const auto at = text.indexOf(marked);
      html += WithNotation(text.left(at)) + Link(setting);
      text.remove(0, at + marked.size());
    }
    html += WithNotation(text);
    return html.replace(QStringLiteral("\n\n"), QStringLiteral("</p><p>"));
  }

 private:
  const std::function<bool(const ExperimentAnswer&)>& fits_;
  int places_ = 0;
};

bool BelongsToIndex(QChar character) {
  return character.isLetterOrNumber() || character == u'\u221e';
}

QString Titled(const char* title, const QString& html) {
  return QStringLiteral("<p style=\"margin-top:0\"><b>%1</b> %2</p>")
      .arg(QLatin1String(title), html);
}

}  // namespace

QString WithNotation(const QString& text) {
  QString html;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const bool lowered = text[i] == u'_';
    if ((!lowered && text[i] != u'^') || i + 1 == text.size()) {
      html += QString(text[i]).toHtmlEscaped();
      continue;
    }
    const bool braced = text[i + 1] == u'{';
    qsizetype end = i + 1;
    while (end < text.size() && (braced ? text[end] != u'}' : BelongsToIndex(text[end]))) ++end;
    const QString inside = text.mid(i + (braced ? 2 : 1), end - i - (braced ? 2 : 1));
    html += (lowered ? QStringLiteral("<sub>%1</sub>") : QStringLiteral("<sup>%1</sup>"))
                .arg(WithNotation(inside));
    i = braced ? end : end - 1;
  }
  return html;
}

std::vector<ExperimentSetting> ProposedBy(const Experiment& experiment) {
  std::vector<ExperimentSetting> proposed = experiment.SetUp;
  for (const ExperimentStep& step : experiment.Steps) {
    proposed.insert(proposed.end(), step.Settings.begin(), step.Settings.end());
  }
  proposed.insert(proposed.end(), experiment.Tries.begin(), experiment.Tries.end());
  return proposed;
}

QString ExperimentHtml(const Experiment& experiment, bool wide,
                       const std::function<bool(const ExperimentAnswer&)>& fits) {
  ExperimentWriter writer(fits);
  QString asks = QStringLiteral("<h3 style=\"margin-top:0\">%1. %2</h3>")
                     .arg(experiment.Number)
                     .arg(QtText(experiment.Title).toHtmlEscaped());
  asks += Titled("What do you expect?", WithNotation(QtText(experiment.Question)));
  if (!experiment.SetUp.empty()) asks += Titled("Set up:", writer.Links(experiment.SetUp));
  QStringList watched;
  for (const std::string& name : experiment.Watched) watched << QtText(name).toHtmlEscaped();
  if (!watched.isEmpty()) asks += Titled("Watch:", watched.join(QStringLiteral(", ")));
  QString steps = Titled("What to do:", QString()) + QStringLiteral("<ol>");
  for (std::size_t k = 0; k < experiment.Steps.size(); ++k) {
    steps += writer.Step(experiment.Steps[k], k);
  }
  steps += QStringLiteral("</ol>");
  QString shows = Titled("What it shows:", writer.Text(experiment));
  if (!experiment.Cost.empty()) {
    shows += Titled("The price:", WithNotation(QtText(experiment.Cost)));
  }
  if (!wide) return asks + steps + shows;
  return QStringLiteral(
             "<table width=\"100%\" cellspacing=\"4\"><tr><td width=\"33%\">%1</td>"
             "<td width=\"33%\">%2</td><td>%3</td></tr></table>")
      .arg(asks, steps, shows);
}

QTextFragment SpanNamed(const QTextDocument& document, const QString& name) {
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    for (auto at = block.begin(); !at.atEnd(); ++at) {
      if (at.fragment().charFormat().anchorNames().contains(name)) return at.fragment();
    }
  }
  return {};
}

void ShowSpan(QTextDocument& document, const QString& name, const QString& text, bool faint) {
  const QTextFragment fragment = SpanNamed(document, name);
  if (!fragment.isValid()) return;
  QTextCharFormat format = fragment.charFormat();
  const QColor colour =
      QGuiApplication::palette().color(faint ? QPalette::PlaceholderText : QPalette::Text);
  if (fragment.text() == text && format.foreground().color() == colour) return;
  format.setForeground(colour);
  QTextCursor span(&document);
  span.setPosition(fragment.position());
  span.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
  span.insertText(text, format);
}

}  // namespace torvane
