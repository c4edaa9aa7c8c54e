// Input: a byte that chooses, then a public key, or a signature file for the content below.

#include "fuzz/input.h"
#include "net/signature.h"

#include <QByteArrayList>

namespace {

/// A key whose secret half is gone, and all that it has ever signed.
const QByteArray key = "RWTRIb6AGNf1mZIxK+Mnolqrf3Iu5K+tFrDPMl7j15B06j8rUPLbVaqE";
const QByteArray content = "HB4Ver=27\n";
const QByteArray comment = "trusted comment: timestamp:1 file:c";
const QByteArrayList firstLines{
    "RUTRIb6AGNf1mUDF1/SIbXrVgzGlaXRdPfgCYCmwQOeBv0ZxZFiVUHklabi3wMvb6f9t5N91HetZmUoVny2eohFhJeF5TFhI1ws=",
    "RWTRIb6AGNf1mciWfetQ41tAsu4EsG5DZEhkMGtY/PFsa1DsJKjaDERYqy59po0L6GJPmSF8Q/5inq6D0vfO62QuPk1Pet1gXAw="};
const QByteArrayList secondLines{
    "BsgNox1hF8cmAf8N53kGWJN3ZfNmiKiBFTTf/lQZy3k2KbGDlucOG6OEKvGiErPPVCvm/uVjmFL0ojA3eoJWCg==",
    "gEvuKJdT7UaPIdm3cK7/Tb1wH+3SRyYzfve5+KkXJuJmzh0x7Sg36u27K3MO47OOFDVtyKEEdUI0UC8KFUyHBw=="};

template<std::size_t size> QByteArray asBytes(const std::array<unsigned char, size>& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<int>(size)};
}

void checkKey(const QByteArray& line)
{
    const auto parsed = signature::parseKey(line);
    if (parsed)
        expect(("Ed" + asBytes(parsed->id) + asBytes(parsed->bytes)).toBase64() == line,
               "a key is written in one way only");
}

void checkFile(const QByteArray& file)
{
    const signature::PublicKey known = signature::parseKey(key).value();
    expect(signature::fault(known, content + ' ', file) != nullptr, "nothing is good for another content");
    if (signature::fault(known, content, file) != nullptr)
        return;
    const QByteArrayList lines = QByteArray(file).replace('\r', "").split('\n');
    const int made = firstLines.indexOf(lines.value(1));
    expect(made >= 0, "only the signatures that were made are good");
    expect(lines.value(2) == comment, "with their comment");
    expect(lines.value(3) == secondLines[made], "and their second signature");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    const bool isKey = input.byte() == 'k';
    if (isKey)
        checkKey(input.rest());
    else
        checkFile(input.rest());
    return 0;
}
