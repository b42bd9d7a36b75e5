// The packages are in build/npm-page, not beside this file.
import { createRequire } from "node:module";

const require = createRequire(new URL("../../build/npm-page/package.json", import.meta.url));
const { default: typescript } = { default: require("typescript-eslint") };

export default typescript.config(typescript.configs.strictTypeChecked, {
    languageOptions: { parserOptions: { projectService: true, tsconfigRootDir: import.meta.dirname } },
    rules: {
        curly: "error",
        eqeqeq: "error",
        "@typescript-eslint/restrict-template-expressions": ["error", { allowNumber: true }],
    },
});
