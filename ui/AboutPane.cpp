#include "ui/AboutPane.h"

#include "core/Services.h"
#include "core/Texts.h"
#include "ui/BuildInfo.h"
#include "ui/ReportSaver.h"
#include "ui/UiText.h"

#include <QCheckBox>
#include <QDesktopServices>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

namespace lb {

AboutPane::AboutPane(Services& services, DiagnosticReporter& reporter, QWidget* parent) : QWidget(parent) {
  auto& alerts = services.alerts;
  auto* name = new QLabel("Lanternbud", this);
  auto font = name->font();
  font.setPointSizeF(font.pointSizeF() * 1.5);
  font.setBold(true);
  name->setFont(font);
  auto* version = new QLabel(QString::fromStdString(formatted(localized("Version %@"), build::version)), this);
  version->setObjectName("version");
  version->setToolTip(QString::fromStdString(formatted(localized("Build %@"), build::description)));
  version->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* copyright = new QLabel(uiText("Copyright © 2026 the Lanternbud developers"), this);
  copyright->setObjectName("copyright");

  auto* manual = new QPushButton(uiText("&Manual"), this);
  manual->setObjectName("manual");
  manual->setAccessibleName(uiText("Open the manual"));
  connect(manual, &QPushButton::clicked, this, [&alerts] { alerts.openHelpPage(build::manualPage); });
  auto* support = new QPushButton(uiText("S&upport"), this);
  support->setObjectName("support");
  support->setAccessibleName(uiText("Open the support page"));
  support->setVisible(*build::supportAddress != '\0');
  connect(support, &QPushButton::clicked, this, [] { QDesktopServices::openUrl(QUrl(build::supportAddress)); });

  // The report, for support: what the Bluetooth and sound systems did.
  auto* saver = new ReportSaver(reporter, services.loop, alerts, this);
  auto* report = new QPushButton(uiText("Save Diagnostic &Report…"), this);
  report->setObjectName("saveReport");
  report->setToolTip(uiText("Saves Lanternbud’s logs, the journal and what the Bluetooth and sound systems say of "
                            "their devices in one file to send to support."));
  auto* mask = new QCheckBox(uiText("&Hide the second half of Bluetooth addresses"), this);
  mask->setObjectName("maskAddresses");
  mask->setChecked(true);
  mask->setToolTip(uiText("A device’s whole address can identify it and its owner."));
  // The whole width, so that a long name wraps rather than being cut.
  auto* outcome = new QLabel(this);
  outcome->setObjectName("reportOutcome");
  outcome->setWordWrap(true);
  outcome->setAlignment(Qt::AlignHCenter);
  outcome->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* showSaved = new QPushButton(uiText("Show in &Folder"), this);
  showSaved->setObjectName("showReport");
  showSaved->setAccessibleName(uiText("Show the report in its folder"));
  showSaved->hide();
  connect(report, &QPushButton::clicked, this, [saver, mask, outcome, showSaved] {
    outcome->clear();
    showSaved->hide();
    saver->start(mask->isChecked());
  });
  connect(saver, &ReportSaver::finished, this, [outcome, showSaved](const QString& text, const QString& saved) {
    outcome->setText(text);
    outcome->setToolTip(saved);
    showSaved->setToolTip(saved);
    showSaved->setProperty("report", saved);
    showSaved->setVisible(!saved.isEmpty());
  });
  // The file manager opens the folder; the file's name is in the message.
  connect(showSaved, &QPushButton::clicked, this, [showSaved] {
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(showSaved->property("report").toString()).absolutePath()));
  });

  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(manual);
  buttons->addWidget(support);
  buttons->addStretch();
  auto* layout = new QVBoxLayout(this);
  layout->addStretch();
  for (auto* label : {name, version, copyright}) layout->addWidget(label, 0, Qt::AlignHCenter);
  layout->addSpacing(12);
  layout->addLayout(buttons);
  layout->addSpacing(12);
  layout->addWidget(report, 0, Qt::AlignHCenter);
  layout->addWidget(mask, 0, Qt::AlignHCenter);
  layout->addWidget(outcome);
  layout->addWidget(showSaved, 0, Qt::AlignHCenter);
  layout->addStretch();
}

} // namespace lb
