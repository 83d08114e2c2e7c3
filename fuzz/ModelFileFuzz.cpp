// The input is a model file. What is accepted keeps to its own classes; what is refused names the file.
#include "Findings.h"
#include "FuzzSupport.h"
#include "app/AttributeText.h"
#include "model/Dn.h"
#include "model/MeasurementJob.h"
#include "model/ModelFile.h"

namespace {

using VorFuzz::expect;
using namespace VorNode;

void checkObject(const Model& model, const ClassDefinition& definition, const std::string& dn) {
    expect(classPathOf(dn) == definition.path, "an object's dn has its class's path");
    for (const AttributeDefinition& attribute : definition.attributes) {
        const AttributeValues values = model.read(dn, attribute.name);
        expect(attribute.accepts(values), "values are of their attribute's type");
        expect(!attributeText(values).empty() || values.size() == 1, "values can be shown");
    }
}

void checkModel(const Model& model) {
    for (const ClassDefinition& definition : model.classes()) {
        expect(model.findClass(definition.path) == &definition, "a class is there once");
        for (const std::string& dn : model.objectsOf(definition.path)) {
            checkObject(model, definition, dn);
        }
    }
    Findings faultsOfJobs;
    readActiveJobs(model, faultsOfJobs);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const VorFuzz::InputFile file(VorFuzz::textOf(data, size));
    try {
        checkModel(*loadModel(file.path()));
    } catch (const InputError& refusal) {
        expect(std::string(refusal.what()).starts_with(file.path() + ":"), "a refusal names the file");
    }
    return 0;
}
