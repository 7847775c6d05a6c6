#include "ui/session/experiments.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

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

}  // namespace

std::vector<OfferedExperiment> ExperimentsOf(const std::string& model, const DataFolder& data) {
  std::vector<OfferedExperiment> experiments;
  const QDir folder(data.FindFolder(QStringLiteral("examples")));
  const QStringList kinds{QStringLiteral("*.experiment")};
  for (const QFileInfo& file : folder.entryInfoList(kinds, QDir::Files, QDir::Name)) {
    OfferedExperiment offered = ReadOffered(file);
    if (!offered.Fault.isEmpty() || offered.Record.Model == model) {
      experiments.push_back(std::move(offered));
    }
  }
  const auto place = [](const OfferedExperiment& of) {
    return std::pair(!of.Fault.isEmpty(), of.Record.Number);
  };
  std::stable_sort(experiments.begin(), experiments.end(),
                   [&](const auto& a, const auto& b) { return place(a) < place(b); });
  return experiments;
}

}  // namespace torvane
