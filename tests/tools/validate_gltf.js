// Validates a glTF file with the Khronos validator; exits 1 when it reports
// an error, and prints the report's issues.
const fs = require('fs');
const path = require('path');
const validator = require('gltf-validator');

const file = process.argv[2];
const bytes = new Uint8Array(fs.readFileSync(file));
validator
  .validateBytes(bytes, {
    uri: path.basename(file),
    externalResourceFunction: (uri) =>
      new Promise((resolve, reject) => {
        fs.readFile(path.join(path.dirname(file), decodeURIComponent(uri)), (error, data) =>
          error ? reject(error.toString()) : resolve(new Uint8Array(data)));
      }),
  })
  .then((report) => {
    const issues = report.issues;
    console.log(`${file}: ${issues.numErrors} errors, ${issues.numWarnings} warnings, ${issues.numInfos} infos`);
    for (const message of issues.messages) {
      if (message.severity <= 1) console.log(`  ${message.code} ${message.pointer || ''}: ${message.message}`);
    }
    process.exit(issues.numErrors > 0 ? 1 : 0);
  })
  .catch((error) => {
    console.error(`${file}: ${error}`);
    process.exit(2);
  });
