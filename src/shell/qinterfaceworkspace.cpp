#include "qinterfaceworkspace.h"

QInterfaceWorkspace::~QInterfaceWorkspace()
{
    delete m_widget.data();
}
