import { offerToCopy } from "./copying.ts";

offerToCopy(document);
