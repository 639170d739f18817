#include "ui/AboutPane.h"

#include "core/Texts.h"
#include "ports/Alerts.h"
#include "ui/BuildInfo.h"
#include "ui/UiText.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

namespace lb {

AboutPane::AboutPane(Alerts& alerts, QWidget* parent) : QWidget(parent) {
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
  layout->addStretch();
}

} // namespace lb
