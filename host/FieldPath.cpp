#include "FieldPath.h"

namespace LibraryBrowser::Host {

FieldPath FieldPath::key(const QString& name) const
{
    FieldPath path = *this;
    path.m_steps.push_back({name, -1});
    return path;
}

FieldPath FieldPath::index(int position) const
{
    FieldPath path = *this;
    path.m_steps.push_back({QString(), position});
    return path;
}

QString FieldPath::text() const
{
    QString out;
    for (const Step& step : m_steps) {
        if (step.index >= 0) {
            out += QLatin1Char('[') + QString::number(step.index) + QLatin1Char(']');
        } else {
            if (!out.isEmpty())
                out += QLatin1Char('.');
            out += step.key;
        }
    }
    return out;
}

} // namespace LibraryBrowser::Host
