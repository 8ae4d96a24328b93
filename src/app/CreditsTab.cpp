#include "CreditsTab.h"

#include "Acknowledgements.h"
#include "LinkOpener.h"
#include "VersionString.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QMouseEvent>

CreditsTab::CreditsTab(UiServices& ui, QWidget* parent) : QWidget(parent), ui_(ui) {
    setObjectName(QStringLiteral("CreditsTab"));

    auto* crdKelvaris = new QLabel(QStringLiteral("Kelvaris"), this);
    crdKelvaris->setObjectName(QStringLiteral("crdKelvaris"));
    QFont big = crdKelvaris->font();
    big.setPointSize(big.pointSize() * 3);
    big.setBold(true);
    crdKelvaris->setFont(big);

    crdVersion_ = new QLabel(this);
    crdVersion_->setObjectName(QStringLiteral("crdVersion"));

    auto* label12 = new QLabel(QStringLiteral("Written by:"), this);
    label12->setObjectName(QStringLiteral("Label12"));
    crdMail_ = new QLabel(QStringLiteral("<a href=\"#\">the Kelvaris developers</a>"), this);
    crdMail_->setObjectName(QStringLiteral("crdMail"));
    crdMail_->setTextInteractionFlags(Qt::NoTextInteraction);
    // The hand pointer over the link: Qt shows it for as long as the pointer
    // stays on the label and puts the normal one back when it leaves.
    crdMail_->setCursor(Qt::PointingHandCursor);
    crdMail_->installEventFilter(this);

    crdText_ = new QLabel(this);
    crdText_->setObjectName(QStringLiteral("crdText"));
    crdText_->setWordWrap(true);
    crdText_->setAlignment(Qt::AlignTop | Qt::AlignLeft);

    auto* grid = new QGridLayout(this);
    grid->addWidget(crdKelvaris, 0, 0, 1, 2);
    grid->addWidget(crdVersion_, 1, 0, 1, 2);
    grid->addWidget(label12, 2, 0);
    grid->addWidget(crdMail_, 2, 1);
    grid->addWidget(crdText_, 3, 0, 1, 2);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(3, 1);
}

void CreditsTab::ShowVersionAndAcknowledgements() {
    crdVersion_->setText(VersionString());
    crdText_->setText(
        QString(AcknowledgementsText()).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
}

void CreditsTab::crdMail_Click() {
    OpenLink(QStringLiteral("mailto"), AuthorMailLink(), ui_);
}

bool CreditsTab::eventFilter(QObject* watched, QEvent* event) {
    if (watched == crdMail_ && event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
        crdMail_Click();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
