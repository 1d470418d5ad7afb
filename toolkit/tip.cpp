// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/tip.h"

QString wholeTip(const QString& text)
{
    if (text.isEmpty())
        return {};
    return "<span>" + text.toHtmlEscaped().replace(u'/', QStringLiteral("/\u200B")) + "</span>";
}
