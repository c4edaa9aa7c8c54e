// Brings the probe into the shipped program, which Qt is told to load this into by QT_QPA_GENERIC_PLUGINS.

#include <QGenericPlugin>

class ProbePlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "probeplugin.json")

public:
    /// Qt complains of nothing at all.
    QObject* create(const QString& /*key*/, const QString& /*settings*/) override { return new QObject; }
};

#include "probeplugin.moc"
