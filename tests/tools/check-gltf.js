// Ends with 0 when the validator finds neither errors nor warnings in the file, else tells them.
const fs = require("fs");
const path = require("path");
const validator = require(path.join(process.env.OSSA_NODE_MODULES, "gltf-validator"));

validator
  .validateBytes(new Uint8Array(fs.readFileSync(process.argv[2])))
  .then((report) => {
    const { numErrors, numWarnings, messages } = report.issues;
    if (numErrors + numWarnings > 0) console.log(JSON.stringify(messages, null, 1));
    process.exit(numErrors + numWarnings > 0 ? 1 : 0);
  })
  .catch((fault) => {
    console.log(String(fault));
    process.exit(2);
  });
