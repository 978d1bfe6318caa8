#include "SendspinKit/Session/SendspinError.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

SendspinError::SendspinError(Case errorCase, const QString &detail, const QString &type)
    : m_case(errorCase), m_detail(detail), m_type(type), m_what(description().toUtf8()) {}

SendspinError SendspinError::unauthorized(const QString &detail) {
    return {Case::unauthorized, detail};
}

SendspinError SendspinError::handshake(const QString &detail) {
    return {Case::handshake, detail};
}

SendspinError SendspinError::malformed(const QString &detail, const QString &type) {
    return {Case::malformed, detail, type};
}

SendspinError SendspinError::timeout(const QString &detail) {
    return {Case::timeout, detail};
}

SendspinError SendspinError::transport(const QString &detail) {
    return {Case::transport, detail};
}

SendspinError SendspinError::roleRejected() {
    return {Case::roleRejected, {}};
}

QString SendspinError::description() const {
    switch (m_case) {
    case Case::unauthorized:
        return u"Music Assistant refused the Sendspin connection (token)."_s;
    case Case::handshake:
        return u"The Sendspin handshake failed (%1)."_s.arg(m_detail);
    case Case::malformed:
        return u"Music Assistant sent a malformed Sendspin message (%1)."_s.arg(m_detail);
    case Case::timeout:
        return u"Music Assistant did not answer in time (%1)."_s.arg(m_detail);
    case Case::transport:
        return u"The Sendspin connection failed (%1)."_s.arg(m_detail);
    case Case::roleRejected:
        break;
    }
    return u"Music Assistant did not accept Vantor as a Sendspin player."_s;
}

bool SendspinError::operator==(const SendspinError &other) const {
    return m_case == other.m_case && m_detail == other.m_detail && m_type == other.m_type;
}

QDebug operator<<(QDebug debug, const SendspinError &error) {
    return debug.noquote() << error.description();
}

} // namespace vantor
