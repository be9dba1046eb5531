#include "records/OpenLink.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "widgets/TextLabel.h"
#include "workspace/Workspace.h"

#include <QApplication>
#include <QClipboard>

using namespace Qt::Literals::StringLiterals;

bool openLink(const QString &link, const QString &name, const QString &words)
{
    if (Workspace::openUrl(link))
        return true;
    const int answer = Alert::run({name,
                                   localized(u"No program on this computer opens this"_s),
                                   firstPart(words),
                                   {localized(u"Copy"_s), localized(u"Close"_s)}});
    if (answer == Alert::firstButton)
        QApplication::clipboard()->setText(words);
    return false;
}
