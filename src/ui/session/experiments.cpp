#include "ui/session/experiments.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <iterator>
#include <utility>

namespace torvane {

namespace {

OfferedExperiment ReadOffered(const QFileInfo& from) {
  OfferedExperiment offered;
  QFile file(from.filePath());
  if (!file.open(QIODevice::ReadOnly)) {
    offered.Fault = file.errorString();
    return offered;
  }
  std::string fault;
  if (auto record = ReadExperiment(file.readAll().toStdString(), fault)) {
    offered.Record = std::move(*record);
  } else {
    offered.Fault = QStringLiteral("%1: %2").arg(from.fileName(), QString::fromStdString(fault));
  }
  const QString setUp = from.path() + u'/' + from.completeBaseName() + QStringLiteral(".tvf");
  if (QFileInfo(setUp).isFile()) offered.File = setUp;
  return offered;
}

std::vector<OfferedExperiment> ReadAll(const QString& examples) {
  std::vector<OfferedExperiment> experiments;
  // No path is the present folder to Qt.
  if (examples.isEmpty()) return experiments;
  const QStringList kinds{QStringLiteral("*.experiment")};
  for (const QFileInfo& file : QDir(examples).entryInfoList(kinds, QDir::Files, QDir::Name)) {
    experiments.push_back(ReadOffered(file));
  }
  const auto place = [](const OfferedExperiment& of) {
    return std::pair(!of.Fault.isEmpty(), of.Record.Number);
  };
  std::stable_sort(experiments.begin(), experiments.end(),
                   [&](const auto& a, const auto& b) { return place(a) < place(b); });
  return experiments;
}

}  // namespace

std::vector<OfferedExperiment> OfferedExperiments::Of(const std::string& model,
                                                      const QString& loopFile) {
  if (!all_) all_ = ReadAll(data_.FindFolder(QStringLiteral("examples")));
  const std::vector<OfferedExperiment> all =
      loopFile.isEmpty() ? *all_ : ReadAll(QFileInfo(loopFile).path());
  std::vector<OfferedExperiment> experiments;
  std::copy_if(all.begin(), all.end(), std::back_inserter(experiments),
               [&](const OfferedExperiment& offered) {
                 return !offered.Fault.isEmpty() || offered.Record.Model == model;
               });
  return experiments;
}

}  // namespace torvane
